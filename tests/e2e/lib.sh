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
