The supported-array rules of "/etc/cv.conf": add, show and del, the
confirmation, the SAN-boot refusal and bad texts.

  $ . "$TESTDIR/lib.sh"
  $ conf="$CVADM_ROOT/etc/cv.conf"
  $ printf 0 > "$CVADM_ROOT/opt/Corvane/log/serial_oper"

The last notification the driver saw: sub-command, vendor, product, driver.

  $ vendor_notified() {
  >   tail -n 1 "$CVADM_ROOT/sim/requests.log" | /usr/bin/python3 -c '
  > import re, sys
  > m = re.search(r"nr=(\d+) .* result=(\d+) in=([0-9a-f]*)", sys.stdin.read())
  > b = bytes.fromhex(m.group(3))
  > text = lambda off, n: b[off:off + n].split(b"\0")[0].decode()
  > print("nr=%s result=%s sub=%d vendor=%r product=%r driver=%r"
  >       % (m.group(1), m.group(2), int.from_bytes(b[0:4], "little"), text(16, 9), text(32, 17), text(64, 65)))'
  > }

Without the parameter file nothing is created:

  $ printf 'y\n' | cvu add supportarraylist vendor=ACME product=Box
  
  Please confirm that this model of disk array can be managed by the Corvane. Otherwise, LUNs of the disk array cannot be accessed.
  Are you sure you want to continue? [y,n]: 
  Error: The driver parameter file /etc/cv.conf is missing or cannot be read; nothing was changed.
  [1]
  $ ls "$CVADM_ROOT/etc"
  user_cfg.xml
  $ cvu show supportarraylist
  Error: The driver parameter file /etc/cv.conf is missing or cannot be read.
  [1]

  $ cat > "$conf" <<'CONF'
  > version = "2";
  > max_busy_retries = "30"; # retries
  > [vendors]
  > ruler_name = "Ruler_HUAWEI_XSG1", vendor_id = "HUAWEI", product_id = "XSG1", driver = "alua";
  > CONF
  $ cp "$conf" "$PWD/before"

Adding asks first; the rule line goes after the last rule, the driver is told
and the operation log has its line:

  $ printf 'y\n' | cvu add supportarraylist vendor=ACME "product=Box Q"
  
  Please confirm that this model of disk array can be managed by the Corvane. Otherwise, LUNs of the disk array cannot be accessed.
  Are you sure you want to continue? [y,n]: 
  Succeeded in adding the array model (vendor=ACME, product=Box Q).
  [0]
  $ cat "$conf"
  version = "2";
  max_busy_retries = "30"; # retries
  [vendors]
  ruler_name = "Ruler_HUAWEI_XSG1", vendor_id = "HUAWEI", product_id = "XSG1", driver = "alua";
  ruler_name = "Ruler_ACME_Box Q", vendor_id = "ACME", product_id = "Box Q", driver = "dft";
  $ vendor_notified
  nr=50 result=1024 sub=58 vendor='ACME' product='Box Q' driver='dft'
  $ operlog | tail -n 1
  [2] [CLI] [1] [1396789537] [add supportarraylist vendor=ACME product=Box Q] [Add a support array vendorid=ACME,proudctid=Box Q] [1]

At the prompt the rest of the line is one argument; driver= is taken:

  $ prompt "add supportarraylist vendor=ACME product=Box  9 driver=alua" "y" "show supportarraylist" "quit"
  
  Corvane CLI #0 >
  Please confirm that this model of disk array can be managed by the Corvane. Otherwise, LUNs of the disk array cannot be accessed.
  Are you sure you want to continue? [y,n]: 
  Succeeded in adding the array model (vendor=ACME, product=Box  9).
  
  Corvane CLI #1 >-----------------------
  Vendor  Product  Driver
  -----------------------
  HUAWEI  XSG1     alua
  ACME    Box Q    dft
  ACME    Box  9   alua
  -----------------------
  
  Corvane CLI #2 >[0]
  $ tail -n 1 "$conf"
  ruler_name = "Ruler_ACME_Box  9", vendor_id = "ACME", product_id = "Box  9", driver = "alua";

An existing rule is refused, the file unchanged:

  $ cp "$conf" "$PWD/now"
  $ printf 'y\n' | cvu add supportarraylist vendor=ACME "product=Box Q"
  
  Please confirm that this model of disk array can be managed by the Corvane. Otherwise, LUNs of the disk array cannot be accessed.
  Are you sure you want to continue? [y,n]: 
  Error: The array model (vendor=ACME, product=Box Q) is already in the supported array list.
  [1]
  $ cmp "$conf" "$PWD/now"

Declining changes nothing, tells the driver nothing and writes no
operation-log line; the operator chose it, so the command succeeds:

  $ : > "$CVADM_ROOT/sim/requests.log"
  $ wc -l < "$CVADM_ROOT/opt/Corvane/log/oper_log"
  4
  $ printf 'n\n' | cvu del supportarraylist vendor=ACME "product=Box Q"
  
  Please confirm that this model of disk array can be managed by the Corvane. Otherwise, LUNs of the disk array cannot be accessed.
  Are you sure you want to continue? [y,n]: 
  The command was cancelled; nothing was changed.
  [0]
  $ printf 'n\n' | cvu add supportarraylist vendor=NEW product=Box
  
  Please confirm that this model of disk array can be managed by the Corvane. Otherwise, LUNs of the disk array cannot be accessed.
  Are you sure you want to continue? [y,n]: 
  The command was cancelled; nothing was changed.
  [0]
  $ cmp "$conf" "$PWD/now"
  $ cat "$CVADM_ROOT/sim/requests.log"
  $ wc -l < "$CVADM_ROOT/opt/Corvane/log/oper_log"
  4

Deleting removes exactly the rule's line:

  $ printf 'y\n' | cvu del supportarraylist vendor=ACME "product=Box Q"
  
  Please confirm that this model of disk array can be managed by the Corvane. Otherwise, LUNs of the disk array cannot be accessed.
  Are you sure you want to continue? [y,n]: 
  Succeeded in deleting the array model (vendor=ACME, product=Box Q).
  [0]
  $ diff "$PWD/now" "$conf"
  5d4
  < ruler_name = "Ruler_ACME_Box Q", vendor_id = "ACME", product_id = "Box Q", driver = "dft";
  [1]
  $ vendor_notified
  nr=50 result=1024 sub=59 vendor='ACME' product='Box Q' driver=''
  $ operlog | tail -n 1
  [5] [CLI] [1] [1396789538] [del supportarraylist vendor=ACME product=Box Q] [Delete a support array vendorid=ACME,proudctid=Box Q] [1]
  $ printf 'y\n' | cvu del supportarraylist vendor=ACME "product=Box Q"
  
  Please confirm that this model of disk array can be managed by the Corvane. Otherwise, LUNs of the disk array cannot be accessed.
  Are you sure you want to continue? [y,n]: 
  Error: The array model (vendor=ACME, product=Box Q) is not in the supported array list.
  [1]

When the driver refuses to be told, the file is changed and the command says so:

  $ echo "50 refuse" > "$CVADM_ROOT/sim/faults"
  $ printf 'y\n' | cvu add supportarraylist vendor=IBM product=2145
  
  Please confirm that this model of disk array can be managed by the Corvane. Otherwise, LUNs of the disk array cannot be accessed.
  Are you sure you want to continue? [y,n]: 
  Warning: The supported array list in /etc/cv.conf was changed, but the driver could not be told; the change takes effect when the driver reloads its configuration.
  [1]
  $ tail -n 1 "$conf"
  ruler_name = "Ruler_IBM_2145", vendor_id = "IBM", product_id = "2145", driver = "dft";
  $ rm "$CVADM_ROOT/sim/faults"

Bad texts and bad words are refused before anything is asked or written:

  $ cp "$conf" "$PWD/now"
  $ usage_of add add supportarraylist vendor=ACME
  Error: Invalid input!
   Usage:
  add supportarraylist vendor=<vendor> product=<product> [driver=<driver>]
                                         --  Add the array model to the supported array list.
                                         --  driver is the driver key of the model. Default is dft.
  [1]
  $ refusals <<'CASES'
  > add supportarraylist product=Box
  > add supportarraylist vendor=ACME product=Box vendor=X
  > add supportarraylist junk vendor=ACME product=Box
  > add supportarraylist vendor=ACMEACME1 product=Box
  > add supportarraylist vendor=ACME product=ABCDEFGHIJKLMNOPQ
  > add supportarraylist vendor=AC"ME product=Box
  > add supportarraylist vendor=ACME product=Bo;x
  > add supportarraylist vendor=ACME product=Bo#x
  > add supportarraylist vendor=ACME product=Bo,x
  > add supportarraylist vendor= product=Box
  > add supportarraylist vendor=ACME product=Box driver=
  > del supportarraylist vendor=ACME product=Box driver=dft
  > show supportarraylist extra
  > CASES
  [1] add supportarraylist product=Box: Error: Invalid input! |  Usage: | add supportarraylist vendor=<vendor> product=<product> [driver=<driver>] |                                        --  Add the array model to the supported array list. |                                        --  driver is the driver key of the model. Default is dft.
  [1] add supportarraylist vendor=ACME product=Box vendor=X: Error: Invalid input! |  Usage: | add supportarraylist vendor=<vendor> product=<product> [driver=<driver>] |                                        --  Add the array model to the supported array list. |                                        --  driver is the driver key of the model. Default is dft.
  [1] add supportarraylist junk vendor=ACME product=Box: Error: Invalid input! |  Usage: | add supportarraylist vendor=<vendor> product=<product> [driver=<driver>] |                                        --  Add the array model to the supported array list. |                                        --  driver is the driver key of the model. Default is dft.
  [1] add supportarraylist vendor=ACMEACME1 product=Box: Error: Invalid vendor "ACMEACME1": it must have 1 to 8 characters, none of them a double quote, ";", "#", "=", "," or a control character.
  [1] add supportarraylist vendor=ACME product=ABCDEFGHIJKLMNOPQ: Error: Invalid product "ABCDEFGHIJKLMNOPQ": it must have 1 to 16 characters, none of them a double quote, ";", "#", "=", "," or a control character.
  [1] add supportarraylist vendor=AC"ME product=Box: Error: Invalid vendor "AC"ME": it must have 1 to 8 characters, none of them a double quote, ";", "#", "=", "," or a control character.
  [1] add supportarraylist vendor=ACME product=Bo;x: Error: Invalid product "Bo;x": it must have 1 to 16 characters, none of them a double quote, ";", "#", "=", "," or a control character.
  [1] add supportarraylist vendor=ACME product=Bo#x: Error: Invalid product "Bo#x": it must have 1 to 16 characters, none of them a double quote, ";", "#", "=", "," or a control character.
  [1] add supportarraylist vendor=ACME product=Bo,x: Error: Invalid product "Bo,x": it must have 1 to 16 characters, none of them a double quote, ";", "#", "=", "," or a control character.
  [1] add supportarraylist vendor= product=Box: Error: Invalid vendor "": it must have 1 to 8 characters, none of them a double quote, ";", "#", "=", "," or a control character.
  [1] add supportarraylist vendor=ACME product=Box driver=: Error: Invalid driver "": it must have 1 to 64 characters, none of them a double quote, ";", "#", "=", "," or a control character.
  [1] del supportarraylist vendor=ACME product=Box driver=dft: Error: Invalid input! |  Usage: | del supportarraylist vendor=<vendor> product=<product> |                                        --  Delete the array model from the supported array list.
  [1] show supportarraylist extra: Error: Invalid input! |  Usage: | show supportarraylist                  --  Display the supported array list.
  $ cmp "$conf" "$PWD/now"

A host that boots from SAN refuses both, before asking:

  $ echo "qvx_sanboot_flag=fs_sanboot" > "$CVADM_ROOT/etc/Corvane.packages.info"
  $ cvu add supportarraylist vendor=ACME product=Box < /dev/null
  The command is not supported for this system when boot from san
  [1]
  $ cvu del supportarraylist vendor=HUAWEI product=XSG1 < /dev/null
  The command is not supported for this system when boot from san
  [1]
  $ cmp "$conf" "$PWD/now"
