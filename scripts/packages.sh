# Sourced by the other scripts: sees to the Debian packages that they need.

# need_packages NAME...: installs what is missing, or says in one line what to install and ends.
need_packages() {
    local missing=()
    if ! command -v dpkg-query >/dev/null; then
        return # not Debian: the build tells what it lacks
    fi
    for name in "$@"; do
        dpkg-query -W -f='${Status}' "$name" 2>/dev/null | grep -q '^install ok' ||
            missing+=("$name")
    done
    if [ ${#missing[@]} -eq 0 ]; then
        return
    fi
    local install=(apt-get install -y --no-install-recommends "${missing[@]}")
    local prefix=()
    if [ "$(id -u)" -ne 0 ]; then
        if ! sudo -n true 2>/dev/null; then
            echo "Install these packages first: sudo apt-get install ${missing[*]}" >&2
            exit 1
        fi
        prefix=(sudo -n)
    fi
    echo "Installing ${missing[*]}"
    if ! { "${prefix[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update &&
        "${prefix[@]}" env DEBIAN_FRONTEND=noninteractive "${install[@]}"; } >/dev/null; then
        echo "Could not install these packages: ${missing[*]}" >&2
        exit 1
    fi
}

build_packages=(g++ cmake ninja-build nlohmann-json3-dev)
test_packages=("${build_packages[@]}" libgtest-dev libcli11-dev)
clang_packages=(clang clang-format clang-tidy libclang-rt-14-dev)
bench_packages=("${build_packages[@]}" libbenchmark-dev python3)
peer_packages=(pkg-config libboost-dev libboost-serialization-dev libsigc++-3.0-dev libglib2.0-dev
    librttr-dev libcereal-dev)
