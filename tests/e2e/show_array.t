`show array` on the default topology: the table of every array that has
disks, and the detail block of chosen arrays.

  $ . "$TESTDIR/lib.sh"

The table: array 3 has no disk and is left out; array 2's name is GB2312.

  $ cv show array
  -----------------------------------------------------------------------------
   Array ID   Array Name          Array SN        Vendor Name  Product Name  
      0       Dorado-Prod   2102351QLH10K7000001    CORVANE    Dorado5000 V6 
      1      S5500T-Backup  210235G6GR10B9000042    CORVANE       S5500T     
      2       \xb4\xe6\xb4\xa2-SiteB    2102351QLH10K7000077    CORVANE    Dorado5000 V6  (esc)
      4       Legacy-2200   210235G7LG10A5000013    CORVANE       S2200T     
  -----------------------------------------------------------------------------

One array in detail: engine-and-letter controller names, and every path of
each controller with its state.

  $ cv show array id=0
  =======================================================
                    Array#0 Information                  
  =======================================================
  Array Name     : Dorado-Prod
  Array SN       : 2102351QLH10K7000001
  Vendor Name    : CORVANE
  Product Name   : Dorado5000 V6
  Controller 0A
         Status  : Enable
         LunCount: 5
         PathInfo: 
                  Path0: Normal
                  Path4: Disable
                  Path18: Potential fault degradation
  Controller 0B
         Status  : Enable
         LunCount: 5
         PathInfo: 
                  Path1: Normal
                  Path5: Disable
  Controller 1A
         Status  : Enable
         LunCount: 5
         PathInfo: 
                  Path2: I/O timeout degradation
  Controller 1B
         Status  : Enable
         LunCount: 5
         PathInfo: 
                  Path3: Disable
  =======================================================

Several arrays in the order given: a disabled controller whose only path
gives its LUN count, and one whose paths are all faulty (4); named
controllers, a remote one, and a controller without LUNs left out (2);
numeric names, a faulty path not counted, a path without LUNs left out
(1); an array without disks (3) and an unknown one (99) do not exist.
Shown without the frames and the identity lines, whose layout is above.

  $ cv show array id=4,2,1,3,99 > out.txt
  [1]
  $ grep -vE '^(=+|(Array SN|Vendor Name|Product Name) .*| +PathInfo: )$' out.txt
                    Array#4 Information                  
  Array Name     : Legacy-2200
  Controller 0
         Status  : Enable
         LunCount: 2
                  Path13: Fault
                  Path17: Fault
  Controller 1
         Status  : Disable
         LunCount: 1
                  Path14: Disable
                    Array#2 Information                  
  Array Name     : \xb4\xe6\xb4\xa2-SiteB (esc)
  Controller CTE0.A
         Status  : Enable
         LunCount: 2
                  Path10: Normal
                  Path12: High latency degradation
  Controller CTE0.B
         Status  : Enable(Remote)
         LunCount: 2
                  Path11: Degraded
                    Array#1 Information                  
  Array Name     : S5500T-Backup
  Controller 0
         Status  : Enable
         LunCount: 2
                  Path6: Normal
                  Path8: Normal
  Controller 1
         Status  : Enable
         LunCount: 2
                  Path7: Normal
                  Path9: Fault
  The disk array whose ID is 3 does not exist.
  The disk array whose ID is 99 does not exist.

Widths only grow within one run. The first listing sees only array 0 (the
driver's count is cut to 1), the second every array, the third array 0
again, still in the wide columns (headers, array 0 and closing lines).

  $ printf '11 count=1 1\n11 count=5 1\n11 count=1 1\n' > root/sim/faults
  $ printf 'show array\nshow array\nshow array\nquit\n' | cv | grep -E '^( +Array ID| +0 |-+$)'
   Array ID  Array Name         Array SN        Vendor Name  Product Name  
      0      Dorado-Prod  2102351QLH10K7000001    CORVANE    Dorado5000 V6 
  ---------------------------------------------------------------------------
   Array ID   Array Name          Array SN        Vendor Name  Product Name  
      0       Dorado-Prod   2102351QLH10K7000001    CORVANE    Dorado5000 V6 
  -----------------------------------------------------------------------------
   Array ID   Array Name          Array SN        Vendor Name  Product Name  
      0       Dorado-Prod   2102351QLH10K7000001    CORVANE    Dorado5000 V6 
  -----------------------------------------------------------------------------

A refused array list, and a refused array request.

  $ echo '11 refuse 1' > root/sim/faults
  $ cv show array
  Can't lookup any arrays information
  [1]
  $ echo '12 code=1031 1' > root/sim/faults
  $ cv show array id=0
  The disk array whose ID is 0 does not exist.
  [1]
  $ tracelog | grep -c 'Get Array {0} info fail'
  1

"verbose" adds the array's effective configuration: its own values, else
the common ones. Array 1 (S5500T-Backup) gets two values of its own.

  $ sed -i 's|<array/>|<array><array210235G6GR10B9000042><loadbalancemode>round-robin</loadbalancemode><workingmode>0</workingmode></array210235G6GR10B9000042></array>|' root/etc/user_cfg.xml
  $ cv show array id=4,1 verbose | sed -n '/Information/p; /^Working Mode/,/^=/p'
                    Array#4 Information                  
  Working Mode   : load balancing within controller
  LUN Trespass   : on
  LoadBalance Mode          : minimal queue depth algorithm
  Loadbanlance io threshold : 100
  Io Suspension Time        : 60
  Max io retry timeout      : 1800
  =======================================================
                    Array#1 Information                  
  Working Mode   : load balancing between controllers
  LUN Trespass   : on
  LoadBalance Mode          : round robin algorithm
  Loadbanlance io threshold : 100
  Io Suspension Time        : 60
  Max io retry timeout      : 1800
  =======================================================
  $ cv show array id=1 verbose | head -n -7 | cmp - <(cv show array id=1 | head -n -1) && echo same detail
  same detail

Without a readable configuration the array is skipped, and the others are
still shown.

  $ mv root/etc/user_cfg.xml root/etc/user_cfg.xml.keep
  $ cv show array id=1,7 verbose
  Get config information failed.
  The disk array whose ID is 7 does not exist.
  [1]
  $ mv root/etc/user_cfg.xml.keep root/etc/user_cfg.xml

Words the command does not take.

  $ usage_of array show array id=0 verbos
  Error: Invalid input!
  Usage:
      -- show array [id=<ID1,ID2,...> [verbose]]
  [1]
  $ refusals <<'EOF'
  > show array id=0 verbose extra
  > show array id=
  > show array name=1
  > show array id=1,2,3,4,5,6,7,8,9
  > show array id=abc
  > show array id=16384
  > EOF
  [1] show array id=0 verbose extra: Error: Invalid input! | <array usage>
  [1] show array id=: Error: Invalid input! | <array usage>
  [1] show array name=1: Error: Invalid input --- name! | <array usage>
  [1] show array id=1,2,3,4,5,6,7,8,9: Error: You can't input more than 8 ids | <array usage>
  [1] show array id=abc: Error: Invalid input --- abc | <array usage>
  [1] show array id=16384: Error: 16384 is out of range | <array usage>
