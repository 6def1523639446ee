#!/usr/bin/env bash
# SPDX-License-Identifier: LicenseRef-Halyard
# usage: demo.sh HALYARD_BINARY OUT_DIR
# Makes a short piece of music, clips it hard and soft, and tells where the sound and the pictures are.
set -euo pipefail
if (($# != 2)); then
    echo "usage: demo.sh HALYARD_BINARY OUT_DIR" >&2
    exit 2
fi
halyard=$1
out=$2
mkdir -p "$out"

"$halyard" demo-signal "$out/music.wav" --force >/dev/null
echo "Hard: what stands above full scale is cut off"
"$halyard" render "$out/music.wav" "$out/hard.wav" --gain 9 --out-gain -1.2 --force \
    --residue-out "$out/hard-residue.wav" --plot "$out/hard.png"
echo
echo "Soft: the same gain into a smooth curve"
"$halyard" render "$out/music.wav" "$out/soft.wav" --gain 9 --out-gain -1.2 --hardness 40 --force \
    --residue-out "$out/soft-residue.wav" --plot "$out/soft.png"
"$halyard" measure --plot "$out/chain.png" --force >"$out/chain.txt"

folder=$(cd "$out" && pwd)
cat <<TEXT

Listen                $folder/music.wav            the music as it was
                      $folder/hard.wav
                      $folder/soft.wav
What was taken away   $folder/hard-residue.wav
                      $folder/soft-residue.wav
Look                  $folder/hard.png             waves, transfer curve, spectra
                      $folder/soft.png
                      $folder/chain.png            what the chain does on this machine
Read                  $folder/chain.txt            the same in figures
TEXT
