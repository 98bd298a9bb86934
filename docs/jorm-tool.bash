# Completion of jorm-tool for bash, made by jorm-tool --completion (scripts/update-manual).
_jorm_tool() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} words=
    COMPREPLY=()
    if [ "$COMP_CWORD" -eq 1 ]; then
        words='info add sub diff min max mul blend negate and or xor convert gain clamp paint sheet hull border crop fill mask stats hist compare threshold box gauss firefly erode dilate open close tophat bothat resize matrix --help --version --manual --completion'
    else
        case ${COMP_WORDS[1]}:$before in
        convert:--depth) words='8 16' ;;
        paint:--channels) words='1 3' ;;
        border:--mode) words='const replicate wrap reflect reflect101' ;;
        crop:--mode) words='const replicate wrap reflect reflect101' ;;
        compare:--relation) words='equal less less-or-equal greater greater-or-equal' ;;
        erode:--shape) words='rectangle ellipse cross' ;;
        dilate:--shape) words='rectangle ellipse cross' ;;
        open:--shape) words='rectangle ellipse cross' ;;
        close:--shape) words='rectangle ellipse cross' ;;
        tophat:--shape) words='rectangle ellipse cross' ;;
        bothat:--shape) words='rectangle ellipse cross' ;;
        info:*) case $word in -*) words='--help' ;; esac ;;
        add:*) case $word in -*) words='-o --output --wrap --help' ;; esac ;;
        sub:*) case $word in -*) words='-o --output --wrap --help' ;; esac ;;
        diff:*) case $word in -*) words='-o --output --help' ;; esac ;;
        min:*) case $word in -*) words='-o --output --constant --help' ;; esac ;;
        max:*) case $word in -*) words='-o --output --constant --help' ;; esac ;;
        mul:*) case $word in -*) words='-o --output --help' ;; esac ;;
        blend:*) case $word in -*) words='-o --output --weight --help' ;; esac ;;
        negate:*) case $word in -*) words='-o --output --help' ;; esac ;;
        and:*) case $word in -*) words='-o --output --help' ;; esac ;;
        or:*) case $word in -*) words='-o --output --help' ;; esac ;;
        xor:*) case $word in -*) words='-o --output --help' ;; esac ;;
        convert:*) case $word in -*) words='-o --output --from --to --refit --scale --offset --depth --help' ;; esac ;;
        gain:*) case $word in -*) words='-o --output --scale --offset --help' ;; esac ;;
        clamp:*) case $word in -*) words='-o --output --low --high --help' ;; esac ;;
        paint:*) case $word in -*) words='-o --output --size --channels --seed --help' ;; *) words='gradient blobs shapes text' ;; esac ;;
        sheet:*) case $word in -*) words='-o --output --columns --cell --help' ;; esac ;;
        hull:*) case $word in -*) words='-o --output --level --help' ;; esac ;;
        border:*) case $word in -*) words='-o --output --margin --mode --colour --help' ;; esac ;;
        crop:*) case $word in -*) words='-o --output --at --size --mode --colour --help' ;; esac ;;
        fill:*) case $word in -*) words='-o --output --colour --at --size --mask --help' ;; esac ;;
        mask:*) case $word in -*) words='-o --output --invert --help' ;; esac ;;
        stats:*) case $word in -*) words='--json --mask --help' ;; esac ;;
        hist:*) case $word in -*) words='-o --output --bins --json --mask --help' ;; esac ;;
        compare:*) case $word in -*) words='-o --output --to --relation --help' ;; esac ;;
        threshold:*) case $word in -*) words='-o --output --level --help' ;; esac ;;
        box:*) case $word in -*) words='-o --output --size --help' ;; esac ;;
        gauss:*) case $word in -*) words='-o --output --size --sigma --help' ;; esac ;;
        firefly:*) case $word in -*) words='-o --output --size --sigma --threshold --help' ;; esac ;;
        erode:*) case $word in -*) words='-o --output --size --shape --mask --help' ;; esac ;;
        dilate:*) case $word in -*) words='-o --output --size --shape --mask --help' ;; esac ;;
        open:*) case $word in -*) words='-o --output --size --shape --mask --help' ;; esac ;;
        close:*) case $word in -*) words='-o --output --size --shape --mask --help' ;; esac ;;
        tophat:*) case $word in -*) words='-o --output --size --shape --mask --help' ;; esac ;;
        bothat:*) case $word in -*) words='-o --output --size --shape --mask --help' ;; esac ;;
        resize:*) case $word in -*) words='-o --output --size --factor --help' ;; esac ;;
        matrix:*) case $word in -*) words='-o --output --by --help' ;; esac ;;
        esac
    fi
    [ -z "$words" ] || mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -o default -F _jorm_tool jorm-tool
