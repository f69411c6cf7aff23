Actions on LUNs and controllers: rebalancing, manual I/O suspension and
the state of a controller's port group, with their refusals and what the
driver hears.

  $ . "$TESTDIR/lib.sh"
  $ printf 0 > "$CVADM_ROOT/opt/Corvane/log/serial_oper"
  $ last() { requests | tail -n 1; }

Rebalancing all LUNs, one array, one VLUN; a missing object is named:

  $ cv start rebalancelun; echo "[$?]"
  Succeeded in executing the command.
  [0]
  $ cv start rebalancelun array_id=0; echo "[$?]"; last
  Succeeded in executing the command.
  [0]
  nr=81 code=0x800c4d51 size=12 result=1024
  $ cv start rebalancelun vlun_id=1; echo "[$?]"; last
  Succeeded in executing the command.
  [0]
  nr=81 code=0x800c4d51 size=12 result=1024
  $ cv start rebalancelun array_id=99; echo "[$?]"
  The disk array whose ID is 99 does not exist.
  [1]
  $ cv start rebalancelun vlun_id=4000; echo "[$?]"
  The VLUN whose ID is 4000 does not exist.
  [1]
  $ cv start rebalancelun array_id=0 vlun_id=1; echo "[$?]"
  Error: Invalid input!
  Usage:
      -- start rebalancelun [array_id=ID|vlun_id=ID]
  [1]

Manual I/O suspension of a VLUN, shown in its detail, then stopped:

  $ cv start iosuspension vlun_id=1 timeout=100; echo "[$?]"
  Succeeded in executing the command.
  [0]
  $ cv show vlun id=1 | grep -i "suspension"
  Manual IO Suspension  : On(timeout/remain : {100} seconds/{100} seconds)
  $ cv stop iosuspension vlun_id=1; echo "[$?]"
  Succeeded in executing the command.
  [0]
  $ cv stop iosuspension vlun_id=4000; echo "[$?]"
  The VLUN whose ID is 4000 does not exist.
  [1]

A controller named by engine and letter; while an HBA of the host is
disabled (one is, in this topology) no controller changes state, and the
refusal comes before any question:

  $ echo n | cv set tpgstate=disable array_id=0 tpg_id=0A; echo "[$?]"
  Disable controller {0A} of array {0} failed.
  The controller cannot be disabled or enable when there is any hba in disabled status.
  [1]
  $ cv set tpgstate=sleep array_id=0 tpg_id=0; echo "[$?]"
  Error: Invalid input!
  Usage:
             -- set tpgstate={enable|disable} array_id=<ID> tpg_id=<ID>
  [1]
  $ cv set tpgstate=enable array_id=99 tpg_id=0; echo "[$?]"
  The disk array whose ID is 99 does not exist.
  [1]

  $ operlog
  [1] [CLI] [1] [1396789539] [start rebalancelun] [Start rebalancelun all] [1]
  [2] [CLI] [1] [1396789539] [start rebalancelun array_id=0] [Start rebalancelun array_id=0] [1]
  [3] [CLI] [1] [1396789539] [start rebalancelun vlun_id=1] [Start rebalancelun vlun_id=1] [1]
  [4] [CLI] [1] [1396789539] [start rebalancelun array_id=99] [Start rebalancelun array_id=99] [0]
  [5] [CLI] [1] [1396789539] [start rebalancelun vlun_id=4000] [Start rebalancelun vlun_id=4000] [0]
  [6] [CLI] [1] [1396789573] [start iosuspension vlun_id=1 timeout=100] [Start iosuspension (timeout=100 S) for vlun_id=1] [1]
  [7] [CLI] [1] [1396789574] [stop iosuspension vlun_id=1] [Stop iosuspension vlun_id=1] [1]
  [8] [CLI] [2] [1396789518] [set tpgstate=disable array_id=0 tpg_id=0A] [Disable controller 0(array ID = 0)] [0]
