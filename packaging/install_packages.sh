#!/bin/bash
# install_packages.sh LIST...: installs the Debian packages named in the lists that are missing.
# Asks the package system first, so that nothing is fetched when all are there.
set -euo pipefail

if [ "${VEXA_SKIP_PACKAGES:-0}" = 1 ]; then
  exit 0
fi
if ! command -v dpkg-query >/dev/null; then
  echo "Not a Debian system: install the equivalents of the packages named in $* yourself." >&2
  exit 0
fi

missing=()
for package in $(sed 's/#.*//' "$@"); do
  status=$(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null || true)
  if [[ $status != *installed || $status == *not-installed* ]]; then
    missing+=("$package")
  fi
done
if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null; then
    echo "These packages are missing, and neither root nor sudo is at hand to install them:" >&2
    echo "  ${missing[*]}" >&2
    exit 1
  fi
  as_root=(sudo)
fi

echo "Installing: ${missing[*]}"
apt() {
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get --quiet -o Dpkg::Use-Pty=0 -o APT::Update::Error-Mode=any "$@"
}
# Old lists still serve when new ones cannot be had, for instance from a local mirror.
apt update || echo "The package lists could not be renewed; going on with those at hand." >&2
if ! apt install --yes --no-install-recommends "${missing[@]}"; then
  echo >&2
  echo "These packages are missing and could not be installed: ${missing[*]}" >&2
  echo "Install them in your own way and give the same command again; nothing else is needed" >&2
  echo "from a network." >&2
  exit 1
fi
