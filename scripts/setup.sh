#!/usr/bin/env bash
# Installs what building, testing and benchmarking the library needs, from Debian packages only.
# Idempotent: when everything is present it only checks and returns.
set -euo pipefail

packages=(
  # build
  cmake ninja-build g++ clang pkg-config
  # runtime dependencies
  libyajl-dev libprotobuf-dev protobuf-compiler librapidxml-dev libcivetweb-dev
  # tests, sanitizers and benchmarks
  libgtest-dev libgmock-dev libbenchmark-dev libclang-rt-14-dev locales curl
  # benchmark anchors
  rapidjson-dev nlohmann-json3-dev libtinyobjloader-dev libboost-dev wrk
)

sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
  sudo_cmd=(sudo)
fi

missing=()
for package in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$package" 2>/dev/null || true)
  case "$status" in
    *"install ok installed"*) ;;
    *) missing+=("$package") ;;
  esac
done

if [ "${#missing[@]}" -gt 0 ]; then
  echo "setup: installing ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  "${sudo_cmd[@]}" apt-get update -qq
  "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi

# The JSON tests run under a locale whose decimal separator is a comma, to prove that numbers
# never depend on the process locale.
if ! locale -a 2>/dev/null | grep -qi '^de_DE\.utf-\?8$'; then
  echo "setup: generating the de_DE.UTF-8 locale"
  if ! grep -q '^de_DE.UTF-8 UTF-8' /etc/locale.gen 2>/dev/null; then
    echo 'de_DE.UTF-8 UTF-8' | "${sudo_cmd[@]}" tee -a /etc/locale.gen >/dev/null
  fi
  "${sudo_cmd[@]}" locale-gen >/dev/null
fi
echo "setup: all dependencies present"
