#!/usr/bin/env bash
# Makes zephlin-VERSION.tar.gz of exactly what the last commit tracks. The same commit gives the same
# bytes, whatever git's settings and version are.
#
#   make-source-package.sh VERSION FOLDER
set -euo pipefail
name=zephlin-$1
folder=$(realpath "$2")
cd "$(dirname "$0")/../.."
git -c tar.umask=0022 -c core.autocrlf=false -c core.eol=lf -c core.attributesFile=/dev/null \
    archive --format=tar --prefix="$name/" HEAD | gzip -9n >"$folder/$name.tar.gz"
echo "$folder/$name.tar.gz"
