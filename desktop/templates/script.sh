#!/bin/sh
# Written by kinsort integrate
# The file manager names the selection in a variable, one address a line; it can be longer than a command line.
printf '%s' "$@SELECTION@" | exec @KINSORT@ open --files-from -
