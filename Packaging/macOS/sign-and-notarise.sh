#!/usr/bin/env bash
# Signs Zephlin.app, has Apple notarise it, and makes the archive that is published. See
# docs/macos-release.md.
set -euo pipefail

if [ $# -ne 2 ]; then
    echo "usage: sign-and-notarise.sh Zephlin.app ARCHIVE.zip" >&2
    echo "ZEPHLIN_SIGNING_IDENTITY names the certificate, ZEPHLIN_NOTARY_PROFILE notarytool's profile;" >&2
    echo "ZEPHLIN_KEYCHAIN is the keychain that holds both, if that is not the user's." >&2
    exit 64
fi
app=$1
archive=$2
: "${ZEPHLIN_SIGNING_IDENTITY:?}" "${ZEPHLIN_NOTARY_PROFILE:?}"
entitlements=$(dirname "$0")/Zephlin.entitlements
# macOS's bash takes an empty array for an unset one.
keychain=()
[ -z "${ZEPHLIN_KEYCHAIN-}" ] || keychain=(--keychain "$ZEPHLIN_KEYCHAIN")

sign() {
    codesign --force --options runtime --timestamp --sign "$ZEPHLIN_SIGNING_IDENTITY" \
        ${keychain[@]+"${keychain[@]}"} "$@"
}

# From the inside out: a signature covers the signatures within.
sparkle=$app/Contents/Frameworks/Sparkle.framework
if [ -d "$sparkle" ]; then
    sign "$sparkle/Versions/B/XPCServices/Installer.xpc"
    sign --preserve-metadata=entitlements "$sparkle/Versions/B/XPCServices/Downloader.xpc"
    sign "$sparkle/Versions/B/Autoupdate"
    sign "$sparkle/Versions/B/Updater.app"
    sign "$sparkle"
fi
sign --entitlements "$entitlements" "$app"
codesign --verify --deep --strict --verbose=2 "$app"

ditto -c -k --keepParent "$app" "$archive"
xcrun notarytool submit "$archive" --keychain-profile "$ZEPHLIN_NOTARY_PROFILE" \
    ${keychain[@]+"${keychain[@]}"} --wait
xcrun stapler staple "$app"
spctl --assess --type execute --verbose=4 "$app"
# Packed again, now with the ticket.
rm -f "$archive"
ditto -c -k --keepParent "$app" "$archive"
