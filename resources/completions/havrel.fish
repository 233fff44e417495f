# SPDX-License-Identifier: MIT
# Completion for havrel(1). The program's own help says what there is, so that this never falls behind it.

function __havrel_words
    set -l words (commandline -opc)
    string match -v -- '-*' $words[2..-1] | head -n 2
end

function __havrel_commands
    havrel (__havrel_words) --help 2>/dev/null | sed -n '/^Subcommands:/,/^$/s/^  \([a-z][a-z-]*\)  *\(.*\)/\1\t\2/p'
end

function __havrel_options
    havrel (__havrel_words) --help 2>/dev/null | sed -nE 's/^  (-[a-zA-Z0-9],)?(--[a-z-]+)( [A-Z][^ ]*)?  *(.*)/\2\t\4/p'
end

function __havrel_integrations
    set -l words (__havrel_words)
    test "$words[1]" = integrations; or return 1
    if test (count $words) -lt 2
        printf '%s\t%s\n' add 'Bring the commands to your own menus' remove 'Take them away again'
    else
        havrel integrations --json 2>/dev/null | sed -n 's/^{"name":"\([^"]*\)".*/\1/p'
    end
end

complete -c havrel -n 'test (count (__havrel_commands)) -gt 0' -f -a '(__havrel_commands)'
complete -c havrel -n 'string match -q -- "-*" (commandline -ct)' -f -a '(__havrel_options)'
complete -c havrel -n 'string match -q integrations (__havrel_words)' -f -a '(__havrel_integrations)'
