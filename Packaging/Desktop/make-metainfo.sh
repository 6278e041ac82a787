#!/bin/sh
# Puts the releases in CHANGELOG.md into the metadata for software centres:
# make-metainfo.sh CHANGELOG.md TEMPLATE RESULT
#
# A release is a section with a date, such as "## 1.2.3 - 2030-01-31". Its description is the paragraph
# below that heading, if there is one.
set -eu

awk '
function escaped(text) {
    gsub(/`/, "", text)
    gsub(/&/, "\\&amp;", text)
    gsub(/</, "\\&lt;", text)
    gsub(/>/, "\\&gt;", text)
    return text
}
function end_release() {
    if (version == "") {
        return
    }
    releases = releases "    <release version=\"" version "\" date=\"" date "\">\n"
    if (paragraph != "") {
        releases = releases "      <description>\n        <p>" escaped(paragraph) "</p>\n      </description>\n"
    }
    releases = releases "      <url type=\"details\">https://quorvenel.example/zephlin/releases/" version \
        "/</url>\n    </release>\n"
    version = paragraph = ""
}
FNR == NR && /^## / {
    end_release()
    gsub(/[][]/, "")
    if ($NF ~ /^[0-9]+-[0-9]+-[0-9]+$/) {
        version = $2
        date = $NF
        in_paragraph = 1
    }
    next
}
FNR == NR {
    if (/^[#-]/ || (/^$/ && paragraph != "")) {
        in_paragraph = 0
    } else if (in_paragraph) {
        paragraph = paragraph (paragraph == "" ? "" : " ") $0
    }
    next
}
FNR == 1 { end_release() }
/@RELEASES@/ {
    if (releases != "") {
        printf "  <releases>\n%s  </releases>\n", releases
    }
    next
}
{ print }' "$1" "$2" >"$3"
