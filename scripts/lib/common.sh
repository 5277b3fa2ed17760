# Shared by the scripts of this folder; sourced, not run.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
# What is costly to make and belongs to no checkout: Windows libraries, Wine's prefix, logs of installing.
cache=${KAPDF_CACHE:-${XDG_CACHE_HOME:-${HOME:-/root}/.cache}/kapdf}
export KAPDF_CACHE=$cache # the toolchain and scripts/wine-run look there, too
jobs=${KAPDF_JOBS:-$(nproc)}
logs=$cache/log
mkdir -p "$logs"

say() { echo "[kapdf] $*" >&2; }
fail() {
  echo "[kapdf] ERROR: $*" >&2
  exit 1
}

# quietly WHAT LOG COMMAND...: runs the command with its output in LOG; on failure shows the log's end and stops.
quietly() {
  local what=$1 log=$2
  shift 2
  if ! "$@" >>"$log" 2>&1; then
    echo "--- last lines of $log" >&2
    tail -n 40 "$log" >&2
    fail "$what failed (all of it: $log)"
  fi
}

# Logs may be handed around: they name no host of a mirror.
without_hosts() { sed -E 's#https?://[^/ ]+#<archive>#g'; }

root_command=()
# Asks for a password only where somebody can type it.
find_root_command() {
  [ "$(id -u)" != 0 ] || return 0
  command -v sudo >/dev/null || fail "these packages are missing: $*; there is no sudo, so install them as root"
  root_command=(sudo)
  [ -t 0 ] || sudo -n true 2>/dev/null || fail "these packages are missing: $*; sudo wants a password, so install them first"
  sudo true || fail "sudo did not work"
}

apt() { # a quiet apt-get with patience for another one that is running
  "${root_command[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -y -q -o DPkg::Lock::Timeout=600 \
    -o Acquire::Retries=3 "$@" 2>&1 </dev/null | without_hosts >>"$logs/apt.log"
}

# Installs those of the named packages that are missing; costs nothing when none is.
need() {
  local missing=() package
  for package in "$@"; do
    dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  find_root_command "${missing[@]}"
  say "installing: ${missing[*]}"
  apt install --no-install-recommends "${missing[@]}" && return
  # No index, or one older than the archive.
  apt update || fail "apt-get update failed (see $logs/apt.log)"
  apt install --no-install-recommends "${missing[@]}" || {
    tail -n 20 "$logs/apt.log" >&2
    fail "these packages cannot be installed: ${missing[*]} (see $logs/apt.log)"
  }
}

packages_linux=(build-essential cmake ninja-build ccache zlib1g-dev libdeflate-dev libjpeg62-turbo-dev libjbig2dec0-dev
  libfreetype-dev libfontconfig-dev libopenjp2-7-dev libqpdf-dev libpng-dev libcli11-dev nlohmann-json3-dev libgtest-dev
  libbenchmark-dev poppler-data python3)
packages_tests=(googletest clang libclang-rt-14-dev qpdf mupdf-tools poppler-utils ghostscript gdal-bin)
packages_windows=(g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64 wine wine64 nasm patch xz-utils bzip2
  ca-certificates)
