#!/bin/sh
# Installs the Debian packages that building and testing tov needs. As root it
# installs what is missing; otherwise it prints the command to run.
set -eu

PACKAGES="cmake ninja-build g++ clang clang-format clang-tidy pkg-config rapidjson-dev libgtest-dev \
libgmock-dev libbenchmark-dev libcli11-dev libclang-rt-14-dev python3 python3-jsonschema \
python3-pytest python3-pip python3-setuptools python3-wheel openjdk-17-jdk-headless junit5 \
libboost-dev nginx wrk python3-prometheus-client python3-yaml libssl-dev graphviz chromium \
chromium-driver python3-selenium libgraphviz-dev libjs-codemirror"

missing=""
for package in $PACKAGES; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
        missing="$missing $package"
    fi
done

if [ -z "$missing" ]; then
    exit 0
fi

if [ "$(id -u)" -eq 0 ]; then
    apt-get update
    DEBIAN_FRONTEND=noninteractive apt-get install -y $missing
else
    echo "Missing Debian packages. Install them with:" >&2
    echo "  sudo apt-get install -y$missing" >&2
    exit 1
fi
