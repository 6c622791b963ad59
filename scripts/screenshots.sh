#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Takes the pictures of the panel in docs/panel/, with a camera, an agent and a browser of its own.
# Usage: scripts/screenshots.sh
set -euo pipefail

root=$(dirname -- "$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")")
# shellcheck source=scripts/common.sh
source "$root/scripts/common.sh"
# shellcheck source=scripts/packages.sh
source "$root/scripts/packages.sh"

(($# == 0)) || fail "no arguments are expected"
ensure_packages "$root/build/log/packages.log" "${run_packages[@]}" "${page_packages[@]}"
build_preset "$root" release
# The pictures show where the camera's directory is.
TMPDIR=/tmp PYTHONDONTWRITEBYTECODE=1 python3 "$root/tests/page/screenshots.py" "$root/build/release" "$root/docs/panel"
ls -l -- "$root/docs/panel"
