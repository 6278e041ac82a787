complete --command Zephlin --no-files
complete --command Zephlin --condition __fish_use_subcommand --arguments apply \
    --description 'Make Caps Lock instant on all keyboards'
complete --command Zephlin --condition __fish_use_subcommand --arguments restore \
    --description "Restore the system's own delay"
complete --command Zephlin --condition __fish_use_subcommand --arguments status \
    --description 'Count the keyboards by their delay'
complete --command Zephlin --condition __fish_use_subcommand --arguments help \
    --description 'Show help'
complete --command Zephlin --condition __fish_use_subcommand --long-option tap-test \
    --description 'Open the tap test'
complete --command Zephlin --condition __fish_use_subcommand --long-option switch-on \
    --description 'Switch instant Caps Lock on'
complete --command Zephlin --condition __fish_use_subcommand --long-option switch-off \
    --description 'Switch instant Caps Lock off'
complete --command Zephlin --condition __fish_use_subcommand --long-option status \
    --description 'Show the status in a notification'
complete --command Zephlin --condition __fish_use_subcommand --long-option help \
    --description 'Show help'
