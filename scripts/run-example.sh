#!/usr/bin/env bash
# Opens the example (the project window on a project file, the modelling window on a model);
# without a display, draws the window offscreen to a picture; until the window is built, lists
# the project's lines, or computes the model, with the batch tool.
set -euo pipefail
build=$1
model=$2
if [ -x "$build/bin/trensil" ]; then
    if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
        exec "$build/bin/trensil" "$model"
    fi
    mkdir -p out
    # The offscreen platform's notes about window hints are of no use here.
    export XDG_RUNTIME_DIR=${XDG_RUNTIME_DIR:-$(mktemp -d)}
    QT_QPA_PLATFORM=offscreen QT_LOGGING_RULES='default.warning=false;qt.qpa.*=false' \
        "$build/bin/trensil" "$model" --screenshot out/example.png
    echo "No display: the window of $model was drawn to out/example.png"
    exit 0
fi
mkdir -p out
case "$model" in
    *.qvj) "$build/bin/trensil-cli" project list "$model" ;;
    *) "$build/bin/trensil-cli" compute "$model" -o out/example.csv --force
       echo "Computed profile written to out/example.csv" ;;
esac
