complete --command zephlin-hidd --no-files
complete --command zephlin-hidd --long-option check \
    --description 'Print how each keyboard will be handled'
complete --command zephlin-hidd --long-option socket --require-parameter --force-files \
    --description 'Socket to listen on'
complete --command zephlin-hidd --long-option state --require-parameter --force-files \
    --description 'File to keep the properties in'
complete --command zephlin-hidd --long-option virtual-keyboards --exclusive \
    --description 'Use this many virtual keyboards only (0 to 256)'
complete --command zephlin-hidd --long-option tap-gap --exclusive \
    --description 'Milliseconds between a Caps Lock press and its early release (0 to 50)'
complete --command zephlin-hidd --short-option h --long-option help --description 'Show help'
complete --command zephlin-hidd --long-option version --description 'Show the version'
