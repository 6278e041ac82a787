#!/usr/bin/env bash
# Prints a version's release notes as Markdown, from CHANGELOG.md: make-release-notes.sh VERSION
#
# A version that is not in it yet has the notes of "Unreleased". Paragraphs and items become single
# lines, because a release's page keeps line breaks.
set -euo pipefail
version=$1
cd "$(dirname "$0")/../.."

section() {
    awk -v heading="$1" '
        function end() { if (text != "") print text; text = "" }
        /^## / { end(); title = $2; gsub(/[][]/, "", title); inside = title == heading; next }
        !inside { next }
        /^$/ || /^#/ || /^- / { end() }
        /^$/ || /^#/ { print; next }
        { sub(/^ +/, ""); text = text == "" ? $0 : text " " $0 }
        END { end() }' CHANGELOG.md | sed -e '/./,$!d'
}

changes=$(section "$version")
[ -n "$changes" ] || changes=$(section Unreleased)
if [ -z "$changes" ]; then
    grep -q '^## Unreleased' CHANGELOG.md || {
        echo "CHANGELOG.md has neither $version nor Unreleased." >&2
        exit 1
    }
    changes="No changes yet."
fi

cat <<TEXT
Zephlin $version makes Caps Lock act the moment it is pressed, on Linux and macOS.

$changes

## Install

| System | Files |
| --- | --- |
| Debian 12 | \`zephlin_${version}_amd64.deb\`; for the application in the panel also \`zephlin-desktop_${version}_amd64.deb\` |
| Fedora and others with RPM | \`zephlin-$version-1.x86_64.rpm\`; for the application, rebuild \`zephlin-$version-1.src.rpm\` |
| Arch Linux | \`PKGBUILD\` and \`zephlin.install\` |
| macOS 13 or later | \`Zephlin-$version-macos.zip\`, or the Homebrew cask \`zephlin.rb\` |

\`docs/install.md\` in \`zephlin-$version.tar.gz\` explains each of them.

## Check the files

In the folder with the files and \`SHA256SUMS\`:

    sha256sum --check --ignore-missing SHA256SUMS

\`zephlin-$version.cdx.json\` lists the programs in each file, what is built into them, what they load, and the versions of the compilers. With these versions, on Debian 12, \`./run release\` makes every file again, byte for byte.
TEXT
