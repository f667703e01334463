#!/usr/bin/env bash
# Installs the Debian packages the build, tests, benchmarks and fuzzer need, skipping
# those already present. Uses sudo when not run as root.
# Usage: install-deps.sh [demo]   demo: only the library, the tool and the gallery's reader.
set -euo pipefail

packages=(
  build-essential cmake pkg-config
  libsdl2-dev libsdl2-image-dev libsdl2-ttf-dev zlib1g-dev
  fonts-roboto-unhinted
  libzxing-dev
)
if [ "${1:-}" != demo ]; then
  packages+=(libgtest-dev libbenchmark-dev libzint-dev libpng-dev clang libclang-rt-dev clang-format valgrind)
fi

missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$package")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "Installing: ${missing[*]}"
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
  sudo_cmd=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -q
"${sudo_cmd[@]}" apt-get install -y -q --no-install-recommends "${missing[@]}"
