set --local commands list property plug pull

# Lists the virtual keyboards of the service whose socket is on the command line.
function __hidutil_virtual_keyboards
    set --local words (commandline --tokenize --cut-at-cursor)
    set --local connection
    if set --local place (contains --index -- --socket $words)
        set connection --socket $words[(math $place + 1)]
    end
    hidutil $connection list 2>/dev/null | awk '$6 == "Virtual" { print $1 "\t" "Virtual keyboard" }'
end

complete --command hidutil --no-files
complete --command hidutil --long-option socket --require-parameter --force-files \
    --description 'Socket of zephlin-hidd'
complete --command hidutil --condition "not __fish_seen_subcommand_from $commands" \
    --short-option h --long-option help --description 'Show help'
complete --command hidutil --condition "not __fish_seen_subcommand_from $commands" \
    --long-option version --description 'Show the version'

complete --command hidutil --condition "not __fish_seen_subcommand_from $commands" \
    --arguments list --description 'List the keyboards'
complete --command hidutil --condition "not __fish_seen_subcommand_from $commands" \
    --arguments property --description 'Get or set properties'
complete --command hidutil --condition "not __fish_seen_subcommand_from $commands" \
    --arguments plug --description 'Plug in a virtual keyboard'
complete --command hidutil --condition "not __fish_seen_subcommand_from $commands" \
    --arguments pull --description 'Unplug a virtual keyboard'

complete --command hidutil --condition '__fish_seen_subcommand_from list property' \
    --long-option matching --exclusive \
    --arguments '\'{"PrimaryUsagePage":1,"PrimaryUsage":6}\'' --description 'Select keyboards'
complete --command hidutil --condition '__fish_seen_subcommand_from property' \
    --long-option get --exclusive --arguments CapsLockDelayOverride \
    --description 'Get a property'
complete --command hidutil --condition '__fish_seen_subcommand_from property' \
    --long-option set --exclusive --arguments '\'{"CapsLockDelayOverride":0}\'' \
    --description 'Set properties'
complete --command hidutil --condition '__fish_seen_subcommand_from pull' \
    --arguments '(__hidutil_virtual_keyboards)'
