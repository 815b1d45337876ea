# Copy with verify of a 1 GiB file beside cp (Pixmill reads the copy back and compares CRCs).
# Sourced by bench/run.sh.

[ -f "$in/big.bin" ] || head -c 1073741824 /dev/urandom > "$in/big.bin"
mkdir -p "$work/copies"

g="Files: copy 1 GiB with verify"
add "$g" "pixmill" "$pxm copy --verify --to-dir $work/copies $in/big.bin"
add "$g" "pixmill (no verify)" "$pxm copy --no-verify --to-dir $work/copies $in/big.bin"
add "$g" "cp" "cp $in/big.bin $work/cp.bin"
