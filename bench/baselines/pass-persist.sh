#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Baseline: one scalar from a script that the agent keeps running and queries line by line.
while read -r command; do
    case $command in
    PING) echo PONG ;;
    get)
        read -r oid
        printf '%s\ninteger\n1\n' "$oid"
        ;;
    *)
        read -r _
        echo NONE
        ;;
    esac
done
