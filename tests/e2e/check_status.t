check status: its three sections and the host-check scripts.

  $ . "$TESTDIR/lib.sh"
  $ tools="$CVADM_ROOT/Corvane/install/linuxTools/toolLib"

  $ cvu check status extra
  Error: Invalid input!
  Usage:
      -- check status
  [1]

Scripts that fail report their texts; an exit code without a text of ours
still withholds "Pass":

  $ echo 'exit 7' > "$tools/t221_checkModules.sh"
  $ echo 'exit 3' > "$tools/t222_checkConf.sh"
  $ echo 'exit 1' > "$tools/t223_checkbackgroundProcess.sh"
  $ echo 'echo "HBA port host5 is Linkdown"; exit 1' > "$tools/t224_checkHBAInfo.sh"
  $ cv check status | sed -n '/environment/,$p'
  Checking environment and config:
  cvdrv.ko,cvdrvext_a.ko,cvdrvext_b.ko are not exist;
  user_cfg.xml and cv.conf are not exist;
  backgroud process is not exist;
  ------------------------------------------------------------
  Checking HBA Information:
  HBA port host5 is Linkdown
  ------------------------------------------------------------
  $ echo 'exit 9' > "$tools/t221_checkModules.sh"
  $ echo 'exit 0' > "$tools/t222_checkConf.sh"
  $ echo 'exit 0' > "$tools/t223_checkbackgroundProcess.sh"
  $ cv check status | sed -n '/environment/,/HBA/p'
  Checking environment and config:
  ------------------------------------------------------------
  Checking HBA Information:

A script killed by a signal ends the configuration check:

  $ echo 'kill -9 $$' > "$tools/t221_checkModules.sh"
  $ cv check status | sed -n '/environment/,/HBA/p'
  Killed
  Checking environment and config:
  ------------------------------------------------------------
  Checking HBA Information:

A host without arrays (the driver lists none) still gets the other checks:

  $ rm -f "$tools"/*.sh
  $ for s in t221_checkModules t222_checkConf t223_checkbackgroundProcess t224_checkHBAInfo; do echo 'exit 0' > "$tools/$s.sh"; done
  $ echo "11 count=0" > "$CVADM_ROOT/sim/faults"
  $ cv check status; echo "[$?]"
  ------------------------------------------------------------
  Checking path status:
  Failed to check array path and disk status because there is no array information.
  ------------------------------------------------------------
  Checking environment and config:
  Pass
  ------------------------------------------------------------
  Checking HBA Information:
  Pass
  ------------------------------------------------------------
  [0]

The array list cannot be read:

  $ echo "11 refuse" > "$CVADM_ROOT/sim/faults"
  $ cv check status | sed -n 2,3p
  Checking path status:
  Failed to check status due to internal errors.

On the default host every kind of problem shows:

  $ rm "$CVADM_ROOT/sim/faults"
  $ cv check status | sed -n 2,3p
  Checking path status:
  Serverity    Array                    Type                     Description                                                                                                                     
  $ cv check status | grep -E '^(Critical|Major|Warning) ' | cut -c1-64 | sort | uniq -c
        1 Critical     Dorado-Prod              All path down            A
        1 Critical     Dorado-Prod              LUN abnormal             T
        3 Critical     Legacy-2200              All path down            A
        3 Critical     Legacy-2200              LUN abnormal             T
        2 Critical     Legacy-2200              Path down                T
        1 Critical     S5500T-Backup            All path down            A
        1 Critical     S5500T-Backup            LUN abnormal             T
        1 Critical     S5500T-Backup            Path down                T
        2 Major        Dorado-Prod              Unstable path            T
        2 Major        S5500T-Backup            No redundant controllers T
        2 Major        \xb4\xe6\xb4\xa2-SiteB               Unstable path            T (esc)
        3 Warning      Dorado-Prod              Path disabled            T
        1 Warning      Legacy-2200              Path disabled            T
        1 Warning      S5500T-Backup            Path disabled            T
        2 Warning      S5500T-Backup            Unstable path of LUN     T
