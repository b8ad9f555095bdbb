# Completion of orvelbox for fish. The program itself says what may follow (orvelbox/cli/completion.h).
function __orvelbox_candidates
    set -l program (string replace -r '^~/' "$HOME/" -- (commandline -opc)[1])
    command -q $program; or return
    for candidate in ($program __complete (commandline -cp | string collect) 2>/dev/null)
        if test $candidate = /
            complete -C "'' "(commandline -ct)
        else
            printf '%s\n' $candidate
        end
    end
end
complete -c orvelbox -f -a '(__orvelbox_candidates)'
