# Sourced by the other scripts: installs the Debian packages that are missing, as root or with sudo. With everything in
# place it asks for no rights at all.
# The pkg-config file of CLP names zlib, but its package does not bring it.
build_packages="g++ cmake ninja-build pkg-config libpolyclipping-dev coinor-libclp-dev zlib1g-dev nlohmann-json3-dev libcli11-dev"
test_packages="libgtest-dev libgmock-dev libbenchmark-dev"

is_installed() {
  dpkg-query -W -f '${Status}' "$1" 2>/dev/null | grep -q 'install ok installed'
}

install_missing() {
  missing=""
  for package in "$@"; do
    is_installed "$package" || missing="$missing $package"
  done
  [ -n "$missing" ] || return 0
  if [ "$(id -u)" = 0 ]; then
    run_as_root=""
  elif command -v sudo >/dev/null; then
    run_as_root="sudo"
  else
    echo "These packages are missing and neither root nor sudo is at hand:$missing" >&2
    echo "Ask an administrator for: apt-get install -y --no-install-recommends$missing" >&2
    exit 1
  fi
  echo "Installing:$missing"
  $run_as_root apt-get update -qq
  $run_as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing
}

# Uses a compiler cache where there is one.
configure() {
  launcher=""
  command -v ccache >/dev/null && launcher="-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"
  cmake --preset "$@" $launcher
}
