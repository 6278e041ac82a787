complete --command Zephlin --no-files
complete --command Zephlin --condition __fish_use_subcommand --arguments apply \
    --description 'Make Caps Lock instant on all keyboards'
complete --command Zephlin --condition __fish_use_subcommand --arguments restore \
    --description "Restore the system's own delay"
complete --command Zephlin --condition __fish_use_subcommand --arguments status \
    --description 'Count the keyboards by their delay'
complete --command Zephlin --condition __fish_use_subcommand --arguments help \
    --description 'Show help'
