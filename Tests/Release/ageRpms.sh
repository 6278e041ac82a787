# shellcheck shell=bash
# Sourced by tests of the RPMs.

# Makes packages like those in a folder with the version 0.0.1: age_rpms RELEASE_FILES FOLDER
#
# rpmbuild follows the same recipe, but takes the files of the present packages instead of building.
age_rpms() {
    local release=$1 folder=$2 work name
    work=$folder/aging
    mkdir -p "$work/files" "$work/bin"
    name=$(basename "$release"/zephlin-*.tar.gz .tar.gz)
    for package in "$release"/zephlin-*.x86_64.rpm; do
        bsdtar -xf "$package" -C "$work/files"
    done
    tar -xzf "$release/$name.tar.gz" -C "$work"
    tar -czf "$work/zephlin-0.0.1.tar.gz" -C "$work" --transform "s|^$name|zephlin-0.0.1|" "$name"
    cat >"$work/bin/cmake" <<TEXT
#!/bin/sh
case "\$*" in
*--build*)
    mkdir -p build/bin
    printf '#!/bin/sh\\necho "hidutil (Zephlin) 0.0.1"\\n' >build/bin/hidutil
    chmod +x build/bin/hidutil
    cp build/bin/hidutil build/bin/Zephlin
    ;;
*--install*) cp -a "$work/files/." "\$DESTDIR" ;;
esac
TEXT
    chmod +x "$work/bin/cmake"
    PATH=$work/bin:$PATH SOURCE_DATE_EPOCH=1 \
        "$work/$name/Packaging/RPM/make-packages.sh" "$work/zephlin-0.0.1.tar.gz" "$folder"
    rm -rf "$work"
}
