complete --command zephlin-hidd --no-files
complete --command zephlin-hidd --long-option socket --require-parameter --force-files \
    --description 'Where to listen'
complete --command zephlin-hidd --long-option virtual-keyboards --exclusive \
    --description 'Start with virtual keyboards (0 to 256)'
complete --command zephlin-hidd --long-option tap-gap --exclusive \
    --description 'Milliseconds that Caps Lock is down for programs (0 to 50)'
complete --command zephlin-hidd --short-option h --long-option help --description 'Print the help'
complete --command zephlin-hidd --long-option version --description 'Print the version'
