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
export DEBIAN_FRONTEND=noninteractive
if ! { "${as_root[@]}" apt-get update --quiet &&
       "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
         apt-get install --yes --quiet --no-install-recommends "${missing[@]}"; }; then
  echo "Installing the missing packages failed. Without a network, install them from your own" >&2
  echo "mirror and run the command again: ${missing[*]}" >&2
  exit 1
fi
