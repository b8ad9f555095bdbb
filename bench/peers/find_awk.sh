#!/bin/sh
# find | awk: the package's DLLs whose names the platform has.
export LC_ALL=C
{
  find "$2" -type f -printf 'P %f\n'
  find "$1" -type f -name '*.dll' -printf 'A %f\n'
} | awk '$1 == "P" { platform[$2] = 1 } $1 == "A" && $2 in platform { print $2 }'
