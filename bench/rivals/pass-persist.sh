#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# The one scalar that a module would hold, as a script that the agent keeps running and asks line by line.
while read -r command; do
    case $command in
    PING) echo PONG ;;
    get)
        read -r identifier
        printf '%s\ninteger\n1\n' "$identifier"
        ;;
    *)
        read -r _
        echo NONE
        ;;
    esac
done
