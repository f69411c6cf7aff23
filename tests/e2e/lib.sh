# Sourced by every transcript: a fresh sandbox with the simulated driver, a
# fixed clock, and `cv` to run the real binary on it.
export CVADM_ROOT="$PWD/root"
export CVSIM_NOW=1795000000
"$CVADM_SIM" --setup "$CVADM_ROOT" >/dev/null
cv() { "$CVADM_SIM" "$@"; }
# The trace log, without its date column (the clock of the program is real).
tracelog() { sed -E 's/^\[[^]]*\] //' "$CVADM_ROOT/opt/Corvane/log/cli_uil_log.txt"; }
# Request log lines, without the payload bytes.
requests() { sed -E 's/ in=.*//' "$CVADM_ROOT/sim/requests.log"; }
# The full usage text, as `help` prints it; `cvu` runs a command and shows
# its output with that text folded to "<usage>", then its exit status.
cv help > "$PWD/usage.txt"
fold_usage() {
  /usr/bin/python3 -c 'import sys; u = open(sys.argv[1]).read(); sys.stdout.write(sys.stdin.read().replace(u, "<usage>\n"))' "$PWD/usage.txt"
}
cvu() { cv "$@" > "$PWD/out.txt"; local rc=$?; fold_usage < "$PWD/out.txt"; echo "[$rc]"; }
# Runs the prompt on the given lines.
prompt() { printf '%s\n' "$@" | cv > "$PWD/out.txt"; local rc=$?; fold_usage < "$PWD/out.txt"; echo "[$rc]"; }
