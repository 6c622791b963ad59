#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Writes the seeds of the fuzzers. The comments at the top of each fuzzer say how its inputs are read.
set -euo pipefail

corpus=$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")/corpus
mkdir -p -- "$corpus"/{pdu,set-phase,camera-protocol,scene-file,response}

# Usage: octets FUZZER NAME HEXADECIMAL-OCTET...
octets() {
    local file=$corpus/$1/$2 octet
    shift 2
    for octet in "$@"; do
        printf '%b' "\\x$octet"
    done >"$file"
}

# Usage: lines NAME, with the lines on standard input
lines() {
    cat >"$corpus/camera-protocol/$1"
}

# Reads each object: step, then one variable, the place of its object, and the one sub-identifier 0.
every_object() {
    local fuzzer=$1 name=$2 object
    local all=()
    shift 2
    for object in {0..63}; do
        all+=("$@" "$(printf %02x "$object")" 01 00)
        # An input has 16 steps.
        if ((object % 16 == 15)); then
            octets "$fuzzer" "$name-$((object / 16))" "${all[@]}"
            all=()
        fi
    done
}

every_object pdu get 00 00
every_object set-phase get 01 00

# The moves of pan, tilt and zoom, and of both kinds of lens; then what the number of a preset and a time-out may be.
moves=(
    "1a 01 00 01 04 02 7f 50 46" "1b 01 00 01 04 01 c0 f4 01" "1c 01 00 01 04 03 40 00 00"
    "1d 01 00 01 04 02 40 ff 7f" "1e 01 00 01 04 01 c0 00 10" "2b 01 00 01 04 02 40 ff 7f" "2a 01 00 01 04 01 40 00 10"
)
numbers=("18 01 00 00 01 05" "19 01 00 00 02 ff 00" "13 01 00 00 02 e8 03" "38 01 00 00 01 02")
others=("1f 01 00 01 02 c0 80" "21 01 00 01 01 40" "25 01 00 01 02 01 80" "2c 01 00 01 02 40 00")
refused=("1a 01 00 01 00" "1a 01 00 00 04 ff ff ff 7f" "1d 01 00 01 01 02" "18 01 00 00 08 00 00 00 00 01 00 00 00")

# Usage: sets FUZZER NAME PREFIX VARIABLE...: a request for each variable
sets() {
    local fuzzer=$1 name=$2 prefix=$3 variable
    shift 3
    local all=()
    for variable in "$@"; do
        # shellcheck disable=SC2206 # words on purpose
        all+=($prefix $variable)
    done
    octets "$fuzzer" "$name" "${all[@]}"
}

# Usage: sets_in_all_ways NAME VARIABLE...: carried out, and refused by somebody else in RESERVE1 and in ACTION
sets_in_all_ways() {
    local name=$1
    shift
    sets pdu "set-$name" "01 00" "$@"
    sets set-phase "set-$name" "04 03 00" "$@"
    sets set-phase "free-$name" "04 00 00" "$@"
    sets set-phase "undo-$name" "04 02 00" "$@"
}

sets_in_all_ways moves "${moves[@]}"
sets_in_all_ways numbers "${numbers[@]}"
sets_in_all_ways others "${others[@]}"
sets_in_all_ways refused "${refused[@]}"
sets pdu set-version-1 "01 80" "${refused[@]}"
sets pdu set-together "" "01 03" "${moves[@]:0:4}"
sets set-phase set-together "" "04 03 03" "${moves[@]:0:4}"
sets pdu relay-table "01 00" "3a 03 01 03 01 00 01 01" "3a 03 01 03 09 00 01 01" "3a 03 01 01 01 01 01 41"
# A cell, and the table itself; then a column that the table does not have.
sets pdu relay-table-and-no-cell "" "01 01" "3a 03 01 03 01 00 01 01" "3a 00 00 01 01" \
    "01 01" "3a 03 01 04 01 00 01 01" "3a 03 01 03 01 00 01 01"
sets set-phase relay-table "04 03 00" "3a 00 03 01 03 01 00 01 01" "3a 01 03 01 03 02 00 01 01 03 01 03 f0 00 01 00"
sets pdu walk "02 00" "00 00" "39 00" "3a 00" "ff 01 00"
octets pdu bulk 03 01 01 01 01 0a 00 00 39 00

# The service says other things: the largest positions, a failure, a rising temperature.
octets pdu service-extremes 04 19 00 04 ff ff ff 7f 04 00 00 00 80 01 00 01 00 1a 01 00 01 04 01 c0 f4 01
octets pdu service-failure 04 19 ff 01 00 1b 01 00 01 04 01 c0 f4 01
octets pdu traps 04 2c 00 02 00 10 05 04 2c 00 02 00 70 05
octets set-phase service-extremes 00 05 00 04 ff ff ff 7f 04 00 00 00 80 04 03 00 2b 01 00 01 04 01 c0 f4 01

# PDUs in BER: a GET of modelName, a SET of positionPan.
octets pdu ber-get 06 a0 1e 02 01 01 02 01 00 02 01 00 30 13 30 11 06 0d \
    2b 06 01 04 01 86 8d 1f 01 01 02 00 00 05 00
octets pdu ber-set 06 a3 22 02 01 01 02 01 00 02 01 00 30 17 30 15 06 0d \
    2b 06 01 04 01 89 36 04 02 07 04 01 00 04 04 02 7f 50 46

lines positioning <<'END'
positioning ["initiator_init",null]
positioning ["set_velocity_with_timeout_send","positioning/1",1,20000,0,0,0,0,300,1500]
700
positioning ["get_position_send","positioning/1"]
2000
positioning ["move_to_position_with_speed_percentage_send","positioning/1",1,180000,1.0,1,-9000,0.5,0,0,0.0,300]
5000
positioning ["get_soft_position_limits_send","positioning/1"]
positioning ["set_velocity_command_timeout_send","positioning/1",3000]
positioning ["set_soft_velocity_limits_send","positioning/1",1,50,80000,1,50,40000,0,0,0]
END
lines lens <<'END'
control {"command":"follow"}
lens_focus ["set_velocity_send","lens_focus/1",1,1]
300
lens_focus ["do_auto_focus_send","lens_focus/1"]
1000
iris ["set_position_send","iris/1",255]
focus_stepper ["start_quick_auto_focus_send","focus_stepper/1"]
focus_stepper ["set_position_send","focus_stepper/1",4000,800]
zoom_stepper ["set_position_send","zoom_stepper/1",6000,1000]
60000
exposure ["set_manual_mode_enable_send","exposure/1",1]
END
lines presets <<'END'
presets_tours ["set_preset_with_current_position_send","presets_tours/1","id-1","Preset 1",1,1]
presets_tours ["get_preset_id_for_quarnapi_id_send","presets_tours/1",1]
presets_tours ["move_to_preset_send","presets_tours/1","id-1",1.0,300,1]
presets_tours ["get_max_presets_send","presets_tours/1"]
END
lines dry-run <<'END'
positioning ["set_velocity_send","positioning/1",1,5000,0,0,0,0,1]
500
control {"command":"dryRun","skipMissingServices":true}
control {"command":"set","target":"positioning/1","field":"pan.position","value":7}
control {"command":"down","service":"relay"}
control {"command":"fail","service":"radar","operation":"*","status":1}
control {"command":"state"}
control {"command":"follow"}
END

lines device <<'END'
alarm ["get_state_send","alarm/4"]
relay ["set_configuration_send","relay/1",1,0,1,0,1,1,1]
relay ["set_state_send","relay/1",1]
temperature ["get_temperature_send","temperature/1"]
power ["get_voltage_state_send","power/1"]
device_information ["get_static_information_send","device_information/1"]
device_management ["reboot_send","device_management/1",2]
1500
directory ["get_target_ids","alarm"]
9000
END
lines control <<'END'
control {"command":"follow"}
control {"command":"set","target":"positioning/1","field":"pan","value":{"position":90000,"maximum":180000}}
control {"command":"set","target":"presets_tours/1","field":"presets","value":[{"number":1,"id":"x","name":"y"}]}
control {"command":"down","service":"relay"}
control {"command":"up","service":"relay"}
control {"command":"fail","service":"iris","operation":"*","status":4,"times":2}
iris ["set_position_send","iris/1",1]
control {"command":"delay","service":"directory","operation":"get_target_ids","milliseconds":100,"times":"always"}
directory ["get_target_ids","iris"]
control {"command":"clear","service":"iris","operation":"*"}
control {"command":"state"}
END
lines rubbish <<'END'
positioning ["get_position_send"
positioning [[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]
positioning ["set_velocity_send","positioning/1",1,1e400,-1,99999999999999999999,null,{},300]
alarm ["get_state_send","alarm/0",0]
control {"command":"set","target":"alarm/1","field":"state","value":18446744073709551615}
control {"command":1,"command":"state","":[]}
relay ["set_state_send","relay/1",256]
END
{
    echo 'control {"command":"follow"}'
    echo "relay [\"set_state_send\",\"relay/1\",$(printf '[%.0s' {1..450})$(printf ']%.0s' {1..450})]"
} | lines nesting

# Usage: scene NAME MEMBER...: a scene file with these members
scene() {
    local name=$1 member
    shift
    {
        printf '{"name": "yard", "camera": {"height": 9}'
        for member in "$@"; do
            printf ', %s' "$member"
        done
        printf '}\n'
    } >"$corpus/scene-file/$name"
}

scene ground '"ground": "earth"' '"skyline": {"seed": 3, "density": 0.5}' \
    '"surfaces": [{"kind": "asphalt", "points": [[-9, 0], [9, 0], [9, 60]]}, {"kind": "sidewalk", "points": [[1, 1], [9, 1], [9, 9]]}]' \
    '"lines": [{"points": [[0, 5], [0, 50]], "width": 0.15, "dash": 3, "gap": 9, "color": "yellow"}]' \
    '"crosswalks": [{"from": [-5, 9], "to": [5, 9], "width": 3}]' \
    '"arrows": [{"at": [0, 20], "bearing": 10, "kind": "throughLeft"}]' \
    '"paintedTexts": [{"at": [2, 20], "bearing": 0, "text": "BUS"}]'
scene objects '"skyline": {"density": 0}' \
    '"buildings": [{"at": [0, 30], "width": 9, "depth": 8, "color": "#b04a3c", "windows": "shop", "sign": "BAR", "roof": "gable"}]' \
    '"trees": [{"at": [4, 9], "height": 6, "kind": "conifer"}, {"at": [-4, 9]}, {"at": [0, 0], "kind": "bush"}]' \
    '"streetLights": [{"at": [3, 3], "bearing": 90, "relay": 1}]' \
    '"signs": [{"at": [5, 9], "bearing": 200, "kind": "billboard", "text": "Fair", "width": 5}]' \
    '"cabinets": [{"at": [-2, 6], "bearing": 180, "input": 1}]' '"lamps": [{"at": [2, 6], "relay": 1}]' \
    '"beacons": [{"bearing": 77, "distance": 20, "height": 9, "color": "#ff0000", "label": "77"}]'
scene traffic '"skyline": {"density": 0}' \
    '"signalCycle": [{"green": ["a"], "seconds": 9, "yellow": 3, "red": 1}]' \
    '"signalPoles": [{"at": [5, 20], "bearing": 270, "arm": 6, "street": "Main", "heads": [{"offset": 3, "bearing": 180, "group": "a", "arrow": true}]}]' \
    '"lanes": [{"points": [[2, -50], [2, 15]], "ways": [{"points": [[2, 25], [90, 25]]}, {"points": [[2, 90]]}], "group": "a", "every": 3}]' \
    '"walks": [{"points": [[-5, 16], [5, 16]], "group": "a", "every": 5}]' \
    '"parked": [{"at": [-6, 9], "bearing": 45, "kind": "truck", "color": "#404040"}]'
scene empty
scene wrong '"trees": [{"at": [1e400, null]}]' '"name": "twice"'

# Responses to the client: a choice of the command, then responses.
# A message with sysUpTime.0, TimeTicks 5.
octets response message 00 00 2c 30 2a 02 01 01 04 06 70 75 62 6c 69 63 a2 1d 02 01 01 02 01 00 02 01 00 30 12 30 10 \
    06 08 2b 06 01 02 01 01 03 00 43 04 00 00 00 05
# Values with types, numbers and octets: a Gauge32, a text, an Opaque float.
octets response values 00 01 42 01 1f 00 04 00 03 61 1b 62 44 00 07 9f 78 04 42 28 00 00
octets response error 00 02 01 05 01 63
octets response rows 01 03 01 02 01 01 00 03 02 02 01 00 00 03 02 02 01 00 00
octets response write 02 01 02 01 05 00
