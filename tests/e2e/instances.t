The instance limit: at most 16 running programs, this one included.

  $ . "$TESTDIR/lib.sh"
  $ cp "$(command -v sleep)" "$PWD/cvadm"
  $ for i in $(seq 15); do "$PWD/cvadm" 60 & done 2>/dev/null

Fifteen others and this one make sixteen: the start goes on.

  $ cv show version; echo "[$?]"
  Software Version   : 21.01.025
  Driver   Version   : 21.01.030
  [0]

A seventeenth stops it:

  $ "$PWD/cvadm" 60 &
  $ cv show version; echo "[$?]"
  system is busy now, please try again later!
  [1]
  $ tracelog | grep -c 'system is busy!'
  1

  $ pkill -f "^$PWD/cvadm 60"; wait 2>/dev/null; true
