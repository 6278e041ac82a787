#!/bin/sh
# Writes CHANGELOG.md as a Debian changelog: make-changelog.sh CHANGELOG.md VERSION RESULT
#
# Unreleased changes get VERSION and the date in SOURCE_DATE_EPOCH, or today's.
set -eu

now=$(date --utc --rfc-email --date="@${SOURCE_DATE_EPOCH:-$(date +%s)}")
awk -v project_version="$2" -v now="$now" '
function end_entry() {
    # After a release, nothing has changed yet.
    if (is_unreleased && !open) {
        begin_entry()
        print "  * No changes yet."
    }
    if (entries > 0 && open) {
        print "\n -- Zephlin developers <zephlin@quorvenel.example>  " date "\n"
    }
    open = 0
}
function begin_entry() {
    if (!open) {
        if (entries++ == 0 && version != project_version) {
            print "The newest version in CHANGELOG.md is " version ", the project is " \
                project_version > "/dev/stderr"
            failed = 1
            exit
        }
        print "zephlin (" version ") unstable; urgency=medium\n"
        open = 1
    }
    if (section != "") {
        print "  * " section ":"
        section = ""
    }
}
# Prints the item that was read, in lines of at most 79 columns.
function end_item(    count, words, line, i) {
    if (item == "") {
        return
    }
    begin_entry()
    count = split(item, words, " ")
    line = "    -"
    for (i = 1; i <= count; i++) {
        if (length(line) + 1 + length(words[i]) > 79) {
            print line
            line = "     "
        }
        line = line " " words[i]
    }
    print line
    item = ""
}
/^## / {
    end_item()
    end_entry()
    gsub(/[][]/, "")
    version = $2
    date = $NF
    is_unreleased = version == "Unreleased"
    if (is_unreleased) {
        version = project_version
        date = now
    } else {
        command = "date --utc --rfc-email --date=" date
        command | getline date
        close(command)
    }
}
/^### / { end_item(); section = $2 }
/^- / { end_item(); item = substr($0, 3) }
/^  / { item = item " " $0 }
END {
    if (failed) {
        exit 1
    }
    end_item()
    end_entry()
}' "$1" >"$3"
