#!/bin/sh
# fd, with the given number of threads: the package's DLLs whose names the platform has.
export LC_ALL=C
{
  fdfind --unrestricted --threads "$3" --type file . "$2" --exec-batch printf 'P %s\n'
  fdfind --unrestricted --threads "$3" --type file --extension dll . "$1"
} | awk -F/ '/^P / { platform[$NF] = 1; next } $NF in platform { print $NF }'
