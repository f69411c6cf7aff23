Dual-site and migration VLUNs (topology of aggregated LUNs: dual-site VLUNs
0 and 1 over arrays 0 and 1, migration VLUNs 2 and 3, ordinary 4 and 5):
their detail, the type filter, set dualsite and start migration, with what
each leaves in the configuration, the driver's request log and the
operation log.

  $ export CVSIM_TOPOLOGY="$TESTDIR/../../sim/topology/aglun.json"
  $ . "$TESTDIR/lib.sh"
  $ cfg="$CVADM_ROOT/etc/user_cfg.xml"
  $ printf 0 > "$CVADM_ROOT/opt/Corvane/log/serial_oper"
  $ ds_items() { grep -E '<lun[0-9a-f]+>|<ds_' "$cfg" | sed -E 's/^ +//'; }
  $ snapshot() { cat "$cfg" > "$PWD/cfg.before"; wc -l < "$CVADM_ROOT/sim/requests.log" > "$PWD/req.before"; }
  $ unchanged() {
  >   cmp -s "$cfg" "$PWD/cfg.before" && echo "configuration unchanged"
  >   echo "changes sent: $(tail -n +$(($(cat "$PWD/req.before") + 1)) "$CVADM_ROOT/sim/requests.log" | grep -c -E 'nr=(50|70|71|96) ')"
  >   test -e "$CVADM_ROOT/opt/Corvane/log/oper_log" && cat "$CVADM_ROOT/opt/Corvane/log/oper_log" | wc -l || echo "no operation log"
  > }

The detail of a dual-site VLUN, its members in the driver's order:

  $ cv show vlun id=1
  =======================================================
                    VLUN#1 Information                   
  =======================================================
  Disk                     : sdc
  Manual IO Suspension     : Off
  Aggregation Type         : Dual Site
  Aggregation Specific Attribution
      WorkingMode            : read write between both arrays
      Primary Array SN       : 2102351XVA10K8000002
  Aggregation Member#0 Infomation
      Name              : ds_log_b
      Status            : Normal
      Capacity          : 100.00GB
      Aggregation Specific Attribution : N/A
      LUN WWN           : 6a5d0000000000000000000000000002
      Array Name        : Site-B
      Array SN          : 2102351XVA10K8000002
      Driver            : alua
      Product Name      : XVA5000
      Vendor Name       : CORVANE
      Owning Controller : CTE0.B
      Working Controller: CTE0.B
      Num of Paths      : 2
      Controller CTE0.A
      Path 4 [3:0:2:2] (sdak)  : Normal
      Controller CTE0.B
      Path 5 [4:0:2:2] (sdal)  : Normal
  Aggregation Member#1 Infomation
      Name              : ds_log_a
      Status            : Normal
      Capacity          : 100.00GB
      Aggregation Specific Attribution : N/A
      LUN WWN           : 6a5d0000000000000000000000000002
      Array Name        : Site-A
      Array SN          : 2102351XVA10K8000001
      Driver            : alua
      Product Name      : XVA5000
      Vendor Name       : CORVANE
      Owning Controller : 0B
      Working Controller: 0B
      Num of Paths      : 4
      Controller 0A
      Path 0 [3:0:0:2] (sdag)  : Normal
      Controller 0B
      Path 1 [4:0:0:2] (sdah)  : Normal
      Controller 1A
      Path 2 [3:0:1:2] (sdai)  : Normal
      Controller 1B
      Path 3 [4:0:1:2] (sdaj)  : Normal
  -------------------------------------------------------
  $ cv show vlun id=2 type=migration
  =======================================================
                    VLUN#2 Information                   
  =======================================================
  Disk                  : sdd
  Manual IO Suspension  : Off
  Aggregation Type      : Migration
  Aggregation Specific Attribution
      IO Direction      : Source
      Rollback          : Disable
  Aggregation Member#0 Infomation
      Name              : mig_src
      Status            : Normal
      Capacity          : 500.00GB
      Aggregation Specific Attribution : Source Device
      LUN WWN           : 6a5d0000000000000000000000000003
      Array Name        : Mig-Source
      Array SN          : 2102351MIG10K8000003
      Driver            : alua
      Product Name      : S5500T
      Vendor Name       : CORVANE
      Owning Controller : 0
      Working Controller: 0
      Num of Paths      : 2
      Controller 0
      Path 6 [3:0:3:3] (sdam)  : Normal
      Controller 1
      Path 7 [4:0:3:3] (sdan)  : Normal
  Aggregation Member#1 Infomation
      Name              : mig_dst
      Status            : Normal
      Capacity          : 500.00GB
      Aggregation Specific Attribution : Target Device
      LUN WWN           : 6a5d0000000000000000000000000004
      Array Name        : Mig-Target
      Array SN          : 2102351MIG10K8000004
      Driver            : alua
      Product Name      : S2200T
      Vendor Name       : CORVANE
      Owning Controller : 0
      Working Controller: 0
      Num of Paths      : 1
      Controller 0
      Path 8 [3:0:4:3] (sdao)  : Normal
  -------------------------------------------------------

The type filter: a VLUN of another type gets its line, and the command fails.

  $ cv show vlun id=0,4 type=migration; echo "[$?]"
  The VLUN whose ID is 0 is not a migration vlun.
  -------------------------------------------------------
  The VLUN whose ID is 4 is not a migration vlun.
  -------------------------------------------------------
  [1]
  $ cv show vlun id=4 type=dualsite; echo "[$?]"
  The VLUN whose ID is 4 is not a dualsite vlun.
  -------------------------------------------------------
  [1]
  $ cv show vlun id=3 type=all | grep -c Member
  2
  $ cv show vlun type=dualsite; echo "[$?]"
  -----------------------------------------------------------------------------------------------------------------------------
   Vlun ID  Disk    Name                 Lun WWN               Status  Capacity  Ctrl(Own/Work)  Array Name  Dev Lun ID  
      0     sdb   ds_data_a  6a5d0000000000000000000000000001  Normal   1.00TB       0A/0A         Site-A         1      
      1     sdc   ds_log_a   6a5d0000000000000000000000000002  Normal  100.00GB      0B/0B         Site-A         2      
  -----------------------------------------------------------------------------------------------------------------------------
  -----------------------------------------------------------------------------------------------------------------------------
   Vlun ID  Disk    Name                 Lun WWN               Status  Capacity  Ctrl(Own/Work)  Array Name  Dev Lun ID  
      0     sdb   ds_data_b  6a5d0000000000000000000000000001  Normal   1.00TB   CTE0.A/CTE0.A     Site-B         1      
      1     sdc   ds_log_b   6a5d0000000000000000000000000002  Normal  100.00GB  CTE0.B/CTE0.B     Site-B         2      
  -----------------------------------------------------------------------------------------------------------------------------
  [0]
  $ cv show vlun array_id=2 type=migration; echo "[$?]"
  --------------------------------------------------------------------------------------------------------------------------------
   Vlun ID  Disk      Name                  Lun WWN               Status  Capacity  Ctrl(Own/Work)  Array Name  Dev Lun ID  
      2     sdd     mig_src     6a5d0000000000000000000000000003  Normal  500.00GB       0/0        Mig-Source       3      
      3     sde    mig_src_2    6a5d0000000000000000000000000005  Normal  10.00GB        1/1        Mig-Source       4      
  --------------------------------------------------------------------------------------------------------------------------------
  [0]
  $ cv show vlun array_id=4 type=migration; echo "[$?]"
  The VLUN does not exist in disk array 4.
  [1]
  $ cv show vlun | grep -c 'ds_\|mig_' || true
  0

Argument refusals change nothing, send no change and write no log line:

  $ snapshot
  $ refusals <<'EOF'
  > set dualsite
  > set dualsite mode=priority
  > set dualsite workingmode=priority
  > set dualsite workingmodes=priority primary_array_id=0
  > set dualsite workingmode=Priority primary_array_id=0
  > set dualsite workingmode= primary_array_id=0
  > set dualsite workingmode=priority primary_array_id=x1
  > set dualsite workingmode=priority primary_array_id=16384
  > set dualsite workingmode=priority array_id=0
  > set dualsite workingmode=priority primary_array_id=0 vlun_id=
  > set dualsite workingmode=priority primary_array_id=0 vlun_id=3-1
  > set dualsite workingmode=priority primary_array_id=0 vlun_id=0-16384
  > set dualsite workingmode=priority primary_array_id=0 array_id=0
  > set dualsite workingmode=priority primary_array_id=0 vlun_id=0 verbose
  > set dualsite workingmode=priority primary_array_id=2 vlun_id=0
  > set dualsite workingmode=priority primary_array_id=0 vlun_id=0,4
  > set dualsite workingmode=priority primary_array_id=0 vlun_id=0,9
  > set dualsite workingmode=priority primary_array_id=9
  > set dualsite split_size
  > set dualsite split_size=
  > set dualsite split_sizes=64K
  > set dualsite split_size=2G
  > set dualsite split_size=3M
  > set dualsite split_size=1000
  > set dualsite split_size=256B
  > set dualsite split_size=K
  > set dualsite split_size=12345678901K
  > set dualsite split_size=64X
  > set dualsite split_size=64K vlun_id=0,4
  > set dualsite split_size=64K vlun_id=9
  > set dualsite split_size=64K array_id=0
  > set dualsite split_size=64K vlun_id=0 vlun_id=1
  > start migration
  > start migration vlun_id=2
  > start migration vlun_id=2 direction=source rollback=enable
  > start migration vlun_id=2 direction=Target rollback=disable
  > start migration vlun_id=2 direction=target rollback=on
  > start migration vlun_id=2,3 direction=target rollback=disable
  > start migration vlun_id=16384 direction=target rollback=disable
  > start migration vlun_id=2 vlun_id=2 rollback=disable
  > start migration vlun_id=2 direction=target rollback=disable verbose
  > start migration vlun_id=9 direction=target rollback=disable
  > start migration vlun_id=4 direction=target rollback=disable
  > start migration vlun_id=0 direction=source rollback=disable
  > EOF
  [1] set dualsite: Error: Invalid input! |  Usage: |     -- set dualsite workingmode={priority|balance} primary_array_id=ID [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |     -- set dualsite split_size=<size> [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}]
  [1] set dualsite mode=priority: Error: Invalid input! |  Usage: |     -- set dualsite workingmode={priority|balance} primary_array_id=ID [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |     -- set dualsite split_size=<size> [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}]
  [1] set dualsite workingmode=priority: Error: Invalid input! | Usage: |     -- set dualsite workingmode={priority|balance} primary_array_id=ID [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |     -- priority: read write within primary array. |     -- balance: read write between both arrays.
  [1] set dualsite workingmodes=priority primary_array_id=0: Error: Invalid input! | Usage: |     -- set dualsite workingmode={priority|balance} primary_array_id=ID [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |     -- priority: read write within primary array. |     -- balance: read write between both arrays.
  [1] set dualsite workingmode=Priority primary_array_id=0: Error: Invalid input! | Usage: |     -- set dualsite workingmode={priority|balance} primary_array_id=ID [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |     -- priority: read write within primary array. |     -- balance: read write between both arrays.
  [1] set dualsite workingmode= primary_array_id=0: Error: Invalid input! | Usage: |     -- set dualsite workingmode={priority|balance} primary_array_id=ID [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |     -- priority: read write within primary array. |     -- balance: read write between both arrays.
  [1] set dualsite workingmode=priority primary_array_id=x1: Error: Invalid input! | Usage: |     -- set dualsite workingmode={priority|balance} primary_array_id=ID [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |     -- priority: read write within primary array. |     -- balance: read write between both arrays.
  [1] set dualsite workingmode=priority primary_array_id=16384: Error: 16384 is out of range
  [1] set dualsite workingmode=priority array_id=0: Error: Invalid input! | Usage: |     -- set dualsite workingmode={priority|balance} primary_array_id=ID [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |     -- priority: read write within primary array. |     -- balance: read write between both arrays.
  [1] set dualsite workingmode=priority primary_array_id=0 vlun_id=: Error: Invalid input! | Usage: |     -- set dualsite workingmode={priority|balance} primary_array_id=ID [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |     -- priority: read write within primary array. |     -- balance: read write between both arrays.
  [1] set dualsite workingmode=priority primary_array_id=0 vlun_id=3-1: Error: Invalid input! | Usage: |     -- set dualsite workingmode={priority|balance} primary_array_id=ID [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |     -- priority: read write within primary array. |     -- balance: read write between both arrays.
  [1] set dualsite workingmode=priority primary_array_id=0 vlun_id=0-16384: Error: Invalid input! | Usage: |     -- set dualsite workingmode={priority|balance} primary_array_id=ID [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |     -- priority: read write within primary array. |     -- balance: read write between both arrays.
  [1] set dualsite workingmode=priority primary_array_id=0 array_id=0: Error: Invalid input! | Usage: |     -- set dualsite workingmode={priority|balance} primary_array_id=ID [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |     -- priority: read write within primary array. |     -- balance: read write between both arrays.
  [1] set dualsite workingmode=priority primary_array_id=0 vlun_id=0 verbose: Error: Invalid input! | Usage: |     -- set dualsite workingmode={priority|balance} primary_array_id=ID [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |     -- priority: read write within primary array. |     -- balance: read write between both arrays.
  [1] set dualsite workingmode=priority primary_array_id=2 vlun_id=0: The VLUN whose ID is 0 does not have path attached to array2.
  [1] set dualsite workingmode=priority primary_array_id=0 vlun_id=0,4: The VLUN whose ID is 4 does not exist or is not dualsite.
  [1] set dualsite workingmode=priority primary_array_id=0 vlun_id=0,9: The VLUN whose ID is 9 does not exist or is not dualsite.
  [1] set dualsite workingmode=priority primary_array_id=9: The disk array whose ID is 9 does not exist.
  [1] set dualsite split_size: Error: Invalid input! | Usage: |     -- set dualsite split_size=<size> [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |     -- size is in the range 512Byte-1GB,unit can be B,K,M,G. |     -- size must be power of 2.
  [1] set dualsite split_size=: Error: Invalid input! | Usage: |     -- set dualsite split_size=<size> [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |     -- size is in the range 512Byte-1GB,unit can be B,K,M,G. |     -- size must be power of 2.
  [1] set dualsite split_sizes=64K: Error: Invalid input! | Usage: |     -- set dualsite split_size=<size> [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |     -- size is in the range 512Byte-1GB,unit can be B,K,M,G. |     -- size must be power of 2.
  [1] set dualsite split_size=2G: Error: Invalid input! | Usage: |     -- set dualsite split_size=<size> [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |     -- size is in the range 512Byte-1GB,unit can be B,K,M,G. |     -- size must be power of 2.
  [1] set dualsite split_size=3M: Error: Invalid input! | Usage: |     -- set dualsite split_size=<size> [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |     -- size is in the range 512Byte-1GB,unit can be B,K,M,G. |     -- size must be power of 2.
  [1] set dualsite split_size=1000: Error: Invalid input! | Usage: |     -- set dualsite split_size=<size> [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |     -- size is in the range 512Byte-1GB,unit can be B,K,M,G. |     -- size must be power of 2.
  [1] set dualsite split_size=256B: Error: Invalid input! | Usage: |     -- set dualsite split_size=<size> [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |     -- size is in the range 512Byte-1GB,unit can be B,K,M,G. |     -- size must be power of 2.
  [1] set dualsite split_size=K: Error: Invalid input! | Usage: |     -- set dualsite split_size=<size> [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |     -- size is in the range 512Byte-1GB,unit can be B,K,M,G. |     -- size must be power of 2.
  [1] set dualsite split_size=12345678901K: Error: Invalid input! | Usage: |     -- set dualsite split_size=<size> [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |     -- size is in the range 512Byte-1GB,unit can be B,K,M,G. |     -- size must be power of 2.
  [1] set dualsite split_size=64X: Error: Invalid input! | Usage: |     -- set dualsite split_size=<size> [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |     -- size is in the range 512Byte-1GB,unit can be B,K,M,G. |     -- size must be power of 2.
  [1] set dualsite split_size=64K vlun_id=0,4: VLUN 4 is not dualsite.
  [1] set dualsite split_size=64K vlun_id=9: The VLUN whose ID is 9 does not exist.
  [1] set dualsite split_size=64K array_id=0: Error: Invalid input! | Usage: |     -- set dualsite split_size=<size> [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |     -- size is in the range 512Byte-1GB,unit can be B,K,M,G. |     -- size must be power of 2.
  [1] set dualsite split_size=64K vlun_id=0 vlun_id=1: Error: Invalid input! | Usage: |     -- set dualsite split_size=<size> [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}] |     -- size is in the range 512Byte-1GB,unit can be B,K,M,G. |     -- size must be power of 2.
  [1] start migration: Error: Invalid input! | Usage: |     -- start migration vlun_id=ID direction={source | target} rollback={enable | disable} |     -- rollback=enable is allowed only with direction=target.
  [1] start migration vlun_id=2: Error: Invalid input! | Usage: |     -- start migration vlun_id=ID direction={source | target} rollback={enable | disable} |     -- rollback=enable is allowed only with direction=target.
  [1] start migration vlun_id=2 direction=source rollback=enable: Error: Invalid input! | Usage: |     -- start migration vlun_id=ID direction={source | target} rollback={enable | disable} |     -- rollback=enable is allowed only with direction=target.
  [1] start migration vlun_id=2 direction=Target rollback=disable: Error: Invalid input! | Usage: |     -- start migration vlun_id=ID direction={source | target} rollback={enable | disable} |     -- rollback=enable is allowed only with direction=target.
  [1] start migration vlun_id=2 direction=target rollback=on: Error: Invalid input! | Usage: |     -- start migration vlun_id=ID direction={source | target} rollback={enable | disable} |     -- rollback=enable is allowed only with direction=target.
  [1] start migration vlun_id=2,3 direction=target rollback=disable: Error: You can't input more than 1 ids | Error: Invalid input! | Usage: |     -- start migration vlun_id=ID direction={source | target} rollback={enable | disable} |     -- rollback=enable is allowed only with direction=target.
  [1] start migration vlun_id=16384 direction=target rollback=disable: Error: 16384 is out of range | Error: Invalid input! | Usage: |     -- start migration vlun_id=ID direction={source | target} rollback={enable | disable} |     -- rollback=enable is allowed only with direction=target.
  [1] start migration vlun_id=2 vlun_id=2 rollback=disable: Error: Invalid input! | Usage: |     -- start migration vlun_id=ID direction={source | target} rollback={enable | disable} |     -- rollback=enable is allowed only with direction=target.
  [1] start migration vlun_id=2 direction=target rollback=disable verbose: Error: Invalid input! | Usage: |     -- start migration vlun_id=ID direction={source | target} rollback={enable | disable} |     -- rollback=enable is allowed only with direction=target.
  [1] start migration vlun_id=9 direction=target rollback=disable: The VLUN whose ID is 9 does not exist.
  [1] start migration vlun_id=4 direction=target rollback=disable: The VLUN whose ID is 4 is not a migrate lun.
  [1] start migration vlun_id=0 direction=source rollback=disable: The VLUN whose ID is 0 is not a migrate lun.
  $ unchanged
  configuration unchanged
  changes sent: 0
  no operation log

set dualsite workingmode for the host, then for a list of VLUNs; each
object gets both items and a log line:

  $ cv set dualsite workingmode=priority primary_array_id=1; echo "[$?]"
  Succeeded in executing the command.
  [0]
  $ cv set dualsite workingmode=balance primary_array_id=1 vlun_id=0-1; echo "[$?]"
  Succeeded in executing the command for vlun 0.
  Succeeded in executing the command for vlun 1.
  [0]
  $ cv set dualsite workingmode=priority primary_array_id=0 vlun_id=1; echo "[$?]"
  Succeeded in executing the command.
  [0]
  $ ds_items
  <ds_mode>priority</ds_mode>
  <ds_primary>2102351XVA10K8000002</ds_primary>
  <ds_split_size>262144</ds_split_size>
  <lun6a5d0000000000000000000000000001>
  <ds_mode>balance</ds_mode>
  <ds_primary>2102351XVA10K8000002</ds_primary>
  <lun6a5d0000000000000000000000000002>
  <ds_mode>priority</ds_mode>
  <ds_primary>2102351XVA10K8000001</ds_primary>
  $ for id in 0 1; do cv show vlun id=$id | grep -A2 '^Aggregation Specific'; done
  Aggregation Specific Attribution
      WorkingMode            : read write between both arrays
      Primary Array SN       : 2102351XVA10K8000002
  Aggregation Specific Attribution
      WorkingMode            : read write within primary array
      Primary Array SN       : 2102351XVA10K8000001
  $ cv show vlun id=1 verbose | tail -n 4
  Dualsite Primary Array SN : 2102351XVA10K8000001
  Dualsite WorkingMode : read write within primary array
  Dualsite Split Size : 128MB
  -------------------------------------------------------

split_size: the sectors are kept, globally or per VLUN:

  $ cv set dualsite split_size=512B; echo "[$?]"
  Succeeded in executing the command.
  [0]
  $ cv set dualsite split_size=1G vlun_id=0; echo "[$?]"
  Succeeded in executing the command.
  [0]
  $ cv set dualsite split_size=64k vlun_id=0,1; echo "[$?]"
  Succeeded in executing the command for vlun 0.
  Succeeded in executing the command for vlun 1.
  [0]
  $ ds_items
  <ds_mode>priority</ds_mode>
  <ds_primary>2102351XVA10K8000002</ds_primary>
  <ds_split_size>1</ds_split_size>
  <lun6a5d0000000000000000000000000001>
  <ds_mode>balance</ds_mode>
  <ds_primary>2102351XVA10K8000002</ds_primary>
  <ds_split_size>128</ds_split_size>
  <lun6a5d0000000000000000000000000002>
  <ds_mode>priority</ds_mode>
  <ds_primary>2102351XVA10K8000001</ds_primary>
  <ds_split_size>128</ds_split_size>
  $ cv show vlun id=0 verbose | tail -n 4
  Dualsite Primary Array SN : 2102351XVA10K8000002
  Dualsite WorkingMode : read write between both arrays
  Dualsite Split Size : 64KB
  -------------------------------------------------------

The driver refuses the configuration notify: the failure is said, logged 0,
and the file keeps the old value:

  $ snapshot
  $ echo "70 refuse" > "$CVADM_ROOT/sim/faults"
  $ cv set dualsite split_size=1M vlun_id=1; echo "[$?]"
  Failed in executing the command for vlun 1.
  [1]
  $ cv set dualsite split_size=1M; echo "[$?]"
  Failed to execute the command due to internal errors.
  [1]
  $ rm "$CVADM_ROOT/sim/faults"
  $ cmp -s "$cfg" "$PWD/cfg.before" && echo "configuration unchanged"
  configuration unchanged

start migration: the two bytes sent, the driver's refusal with no active
path, and what the migration detail shows afterwards:

  $ cv start migration vlun_id=2 direction=target rollback=enable; echo "[$?]"
  Succeeded in executing the command.
  [0]
  $ tail -n 1 "$CVADM_ROOT/sim/requests.log" | sed -E 's/.*(nr=[0-9]+).* in=(.{12}).*/\1 \2/'
  nr=96 020000000101
  $ cv show vlun id=2 | grep -A2 '^Aggregation Specific'
  Aggregation Specific Attribution
      IO Direction      : Target
      Rollback          : Enable
  $ cv start migration direction=source rollback=disable vlun_id=2; echo "[$?]"
  Succeeded in executing the command.
  [0]
  $ cv show vlun id=2 | grep -A2 '^Aggregation Specific'
  Aggregation Specific Attribution
      IO Direction      : Source
      Rollback          : Disable
  $ cv start migration vlun_id=3 direction=target rollback=disable; echo "[$?]"
  The direction device has no active path for The VLUN whose ID is 3.
  [1]
  $ echo "96 refuse" > "$CVADM_ROOT/sim/faults"
  $ cv start migration vlun_id=2 direction=target rollback=disable; echo "[$?]"
  Failed to execute the command due to internel errors.
  [1]
  $ rm "$CVADM_ROOT/sim/faults"

The operation log of all the above:

  $ operlog
  [1] [CLI] [1] [1396789567] [set dualsite workingmode=priority primary_array_id=1] [Set dualsite workingmode(mode=priority,primary_array_id=1) ] [1]
  [2] [CLI] [1] [1396789567] [set dualsite workingmode=balance primary_array_id=1 vlun_id=0-1] [Set dualsite workingmode(mode=balance,primary_array_id=1) for vlun id 0] [1]
  [3] [CLI] [1] [1396789567] [set dualsite workingmode=balance primary_array_id=1 vlun_id=0-1] [Set dualsite workingmode(mode=balance,primary_array_id=1) for vlun id 1] [1]
  [4] [CLI] [1] [1396789567] [set dualsite workingmode=priority primary_array_id=0 vlun_id=1] [Set dualsite workingmode(mode=priority,primary_array_id=0) for vlun id 1] [1]
  [5] [CLI] [1] [1396789581] [set dualsite split_size=512B] [Set dualsite split size (size=1 *512) ] [1]
  [6] [CLI] [1] [1396789581] [set dualsite split_size=1G vlun_id=0] [Set dualsite split size (size=2097152 *512) for vlun id 0] [1]
  [7] [CLI] [1] [1396789581] [set dualsite split_size=64k vlun_id=0,1] [Set dualsite split size (size=128 *512) for vlun id 0] [1]
  [8] [CLI] [1] [1396789581] [set dualsite split_size=64k vlun_id=0,1] [Set dualsite split size (size=128 *512) for vlun id 1] [1]
  [9] [CLI] [1] [1396789581] [set dualsite split_size=1M vlun_id=1] [Set dualsite split size (size=2048 *512) for vlun id 1] [0]
  [10] [CLI] [1] [1396789581] [set dualsite split_size=1M] [Set dualsite split size (size=2048 *512) ] [0]
  [11] [CLI] [1] [1396789572] [start migration vlun_id=2 direction=target rollback=enable] [Start migration(direction/rollback: bDstIsPrior: 1, bRollBack: 1) for vlun_id=2] [1]
  [12] [CLI] [1] [1396789572] [start migration direction=source rollback=disable vlun_id=2] [Start migration(direction/rollback: bDstIsPrior: 0, bRollBack: 0) for vlun_id=2] [1]
  [13] [CLI] [1] [1396789572] [start migration vlun_id=3 direction=target rollback=disable] [Start migration(direction/rollback: bDstIsPrior: 1, bRollBack: 0) for vlun_id=3] [0]
  [14] [CLI] [1] [1396789572] [start migration vlun_id=2 direction=target rollback=disable] [Start migration(direction/rollback: bDstIsPrior: 1, bRollBack: 0) for vlun_id=2] [0]
