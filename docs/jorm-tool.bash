# Completion of jorm-tool for bash, made by jorm-tool --completion (scripts/update-manual).
_jorm_tool() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} words=
    COMPREPLY=()
    if [ "$COMP_CWORD" -eq 1 ]; then
        words='info add sub diff min max mul blend negate and or xor convert gain clamp paint sheet hull border crop fill mask stats hist compare threshold otsu mser watershed tree box gauss firefly erode dilate open close tophat bothat resize matrix --help --version --manual --completion'
    else
        case ${COMP_WORDS[1]}:$before in
        convert:--depth) words='8 16' ;;
        paint:--channels) words='1 3' ;;
        border:--mode) words='const replicate wrap reflect reflect101' ;;
        crop:--mode) words='const replicate wrap reflect reflect101' ;;
        compare:--relation) words='equal less less-or-equal greater greater-or-equal' ;;
        threshold:--method) words='level otsu usto blur adaptive' ;;
        mser:--draw) words='ellipse hull box both' ;;
        mser:--polarity) words='dark light both' ;;
        watershed:--polarity) words='dark light' ;;
        tree:--polarity) words='dark light' ;;
        erode:--shape) words='rectangle ellipse cross' ;;
        dilate:--shape) words='rectangle ellipse cross' ;;
        open:--shape) words='rectangle ellipse cross' ;;
        close:--shape) words='rectangle ellipse cross' ;;
        tophat:--shape) words='rectangle ellipse cross' ;;
        bothat:--shape) words='rectangle ellipse cross' ;;
        info:*) case $word in -*) words='--help' ;; esac ;;
        add:*) case $word in -*) words='-o --output --wrap --quiet --help' ;; esac ;;
        sub:*) case $word in -*) words='-o --output --wrap --quiet --help' ;; esac ;;
        diff:*) case $word in -*) words='-o --output --help' ;; esac ;;
        min:*) case $word in -*) words='-o --output --constant --window --quiet --help' ;; esac ;;
        max:*) case $word in -*) words='-o --output --constant --window --quiet --help' ;; esac ;;
        mul:*) case $word in -*) words='-o --output --quiet --help' ;; esac ;;
        blend:*) case $word in -*) words='-o --output --weight --help' ;; esac ;;
        negate:*) case $word in -*) words='-o --output --quiet --help' ;; esac ;;
        and:*) case $word in -*) words='-o --output --quiet --help' ;; esac ;;
        or:*) case $word in -*) words='-o --output --quiet --help' ;; esac ;;
        xor:*) case $word in -*) words='-o --output --quiet --help' ;; esac ;;
        convert:*) case $word in -*) words='-o --output --from --to --refit --scale --offset --depth --quiet --help' ;; esac ;;
        gain:*) case $word in -*) words='-o --output --scale --offset --quiet --help' ;; esac ;;
        clamp:*) case $word in -*) words='-o --output --low --high --quiet --help' ;; esac ;;
        paint:*) case $word in -*) words='-o --output --size --channels --seed --help' ;; *) words='gradient blobs shapes text' ;; esac ;;
        sheet:*) case $word in -*) words='-o --output --columns --cell --quiet --help' ;; esac ;;
        hull:*) case $word in -*) words='-o --output --level --help' ;; esac ;;
        border:*) case $word in -*) words='-o --output --margin --mode --colour --quiet --help' ;; esac ;;
        crop:*) case $word in -*) words='-o --output --at --size --mode --colour --quiet --help' ;; esac ;;
        fill:*) case $word in -*) words='-o --output --colour --at --size --mask --quiet --help' ;; esac ;;
        mask:*) case $word in -*) words='-o --output --invert --help' ;; esac ;;
        stats:*) case $word in -*) words='--json --mask --help' ;; esac ;;
        hist:*) case $word in -*) words='-o --output --bins --json --mask --help' ;; esac ;;
        compare:*) case $word in -*) words='-o --output --to --relation --help' ;; esac ;;
        threshold:*) case $word in -*) words='-o --output --level --method --offset --quiet --help' ;; esac ;;
        otsu:*) case $word in -*) words='--json --help' ;; esac ;;
        mser:*) case $word in -*) words='-o --output --draw --delta --area --variation --diversity --polarity --mask --json --help' ;; esac ;;
        watershed:*) case $word in -*) words='-o --output --level --polarity --least --quiet --help' ;; esac ;;
        tree:*) case $word in -*) words='--polarity --json --help' ;; esac ;;
        box:*) case $word in -*) words='-o --output --size --quiet --help' ;; esac ;;
        gauss:*) case $word in -*) words='-o --output --size --sigma --quiet --help' ;; esac ;;
        firefly:*) case $word in -*) words='-o --output --size --sigma --threshold --quiet --help' ;; esac ;;
        erode:*) case $word in -*) words='-o --output --size --shape --mask --quiet --help' ;; esac ;;
        dilate:*) case $word in -*) words='-o --output --size --shape --mask --quiet --help' ;; esac ;;
        open:*) case $word in -*) words='-o --output --size --shape --mask --quiet --help' ;; esac ;;
        close:*) case $word in -*) words='-o --output --size --shape --mask --quiet --help' ;; esac ;;
        tophat:*) case $word in -*) words='-o --output --size --shape --mask --quiet --help' ;; esac ;;
        bothat:*) case $word in -*) words='-o --output --size --shape --mask --quiet --help' ;; esac ;;
        resize:*) case $word in -*) words='-o --output --size --factor --quiet --help' ;; esac ;;
        matrix:*) case $word in -*) words='-o --output --by --quiet --help' ;; esac ;;
        esac
    fi
    [ -z "$words" ] || mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -o default -F _jorm_tool jorm-tool
