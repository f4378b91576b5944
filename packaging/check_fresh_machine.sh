#!/bin/bash
# check_fresh_machine.sh [--user]: does Vexa build and pass its tests on a machine that has
# nothing but Debian 12 and make?
#
# Builds such a machine in a temporary folder, puts a clean clone of the last commit into it and
# gives it the two commands, `make run` and `make test`: as root, or with --user as somebody who
# has sudo. Needs root, debootstrap and git, and takes packages from where this machine does.
set -euo pipefail

suite=bookworm
as_user=no
case "${1:-}" in
  "") ;;
  --user) as_user=yes ;;
  *) sed -n '2,8s/^# \?//p' "$0"; exit 2 ;;
esac
if [ "$(id -u)" -ne 0 ]; then
  echo "Only root can build a machine in a folder." >&2
  exit 2
fi
for tool in debootstrap git; do
  command -v "$tool" >/dev/null || { echo "Install $tool first." >&2; exit 2; }
done

# Mounts belong to this process alone and vanish with it, so that nothing but the folder itself
# is left to remove.
if [ "${VEXA_OWN_MOUNTS:-}" != yes ]; then
  export VEXA_OWN_MOUNTS=yes
  exec unshare --mount --propagation private "$0" "$@"
fi

source_tree=$(cd "$(dirname "$0")/.." && pwd)
machine=$(mktemp -d "${TMPDIR:-/var/tmp}/vexa-fresh.XXXXXX")
chmod 755 "$machine"
remove() {
  for mount in dev/pts proc sys; do
    if mountpoint --quiet "$machine/$mount"; then umount "$machine/$mount"; fi
  done
  rm -rf --one-file-system "$machine"
}
trap remove EXIT

# One line "address release component" for each part of this suite that this machine uses.
sources=$(apt-get indextargets --format '$(REPO_URI) $(RELEASE) $(COMPONENT)' \
            'Created-By: Packages' | grep -E " $suite(-[a-z]+)? " | sort -u || true)
mirror=$(awk -v suite="$suite" '$2 == suite { print $1; exit }' <<<"$sources")
if [ -z "$mirror" ]; then
  echo "This machine has no apt source of $suite." >&2
  exit 2
fi
proxy=$(apt-config dump Acquire::http::Proxy | sed -n 's/.*"\(.*\)";/\1/p')
if [ -n "$proxy" ]; then
  export http_proxy=$proxy
fi

log=$machine.log
say() { printf '%s %s\n' "$(date +%H:%M:%S)" "$*"; }

say "building a fresh Debian ($suite)"
include=make
[ "$as_user" = no ] || include=make,sudo
if ! debootstrap --variant=minbase --include="$include" "$suite" "$machine" "$mirror" \
       >"$log" 2>&1; then
  tail -20 "$log"
  rm -f "$log"
  exit 1
fi
rm -f "$log"
sed 's/^/deb /' <<<"$sources" >"$machine/etc/apt/sources.list"
if [ -n "$proxy" ]; then
  echo "Acquire::http::Proxy \"$proxy\";" >"$machine/etc/apt/apt.conf.d/90proxy"
fi
for file in resolv.conf hosts; do
  cp --dereference "/etc/$file" "$machine/etc/$file" 2>/dev/null || true
done
# Services of packages are not to be started inside the folder.
printf '#!/bin/sh\nexit 101\n' >"$machine/usr/sbin/policy-rc.d"
chmod +x "$machine/usr/sbin/policy-rc.d"

mount -t proc proc "$machine/proc"
mount -t sysfs -o ro sysfs "$machine/sys"
mount -t devpts -o newinstance,ptmxmode=0666,mode=0620 devpts "$machine/dev/pts"
ln -sfn pts/ptmx "$machine/dev/ptmx"

owner=root
home=/root
if [ "$as_user" = yes ]; then
  owner=ada
  home=/home/ada
  chroot "$machine" useradd --create-home --shell /bin/bash "$owner"
  echo "$owner ALL=(ALL) NOPASSWD: ALL" >"$machine/etc/sudoers.d/$owner"
fi
git clone --quiet --no-hardlinks "$source_tree" "$machine$home/vexa"
chroot "$machine" chown -R "$owner:" "$home/vexa"
say "packages before: $(chroot "$machine" dpkg-query --show | wc -l);" \
    "commit $(git -C "$source_tree" rev-parse --short HEAD), as $owner"

# inside COMMAND...: runs a command in the clone, with an environment as after a login.
inside() {
  local login=()
  [ "$as_user" = no ] || login=(setpriv --reuid="$owner" --regid="$owner" --init-groups)
  chroot "$machine" "${login[@]}" env --ignore-environment HOME="$home" USER="$owner" \
    PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 \
    bash -c 'cd ~/vexa && exec "$@"' inside "$@" </dev/null
}

failed=0
for target in run test; do
  say "make $target"
  started=$SECONDS
  if inside make "$target"; then
    say "make $target: passed in $((SECONDS - started)) s"
  else
    say "make $target: FAILED after $((SECONDS - started)) s"
    failed=1
  fi
done
if [ "$failed" -eq 0 ]; then
  say "fresh machine: make run and make test passed"
else
  say "fresh machine: FAILED"
fi
exit "$failed"
