#!/usr/bin/env bash
# Makes zephlin-VERSION.tar.gz of exactly what the last commit tracks. The same commit gives the same
# bytes.
#
#   make-source-package.sh VERSION FOLDER
set -euo pipefail
name=zephlin-$1
folder=$(realpath "$2")
cd "$(dirname "$0")/../.."
git archive --format=tar.gz --prefix="$name/" --output="$folder/$name.tar.gz" HEAD
echo "$folder/$name.tar.gz"
