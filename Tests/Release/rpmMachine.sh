# shellcheck shell=bash
# Sourced by lifeOfTheRpms.sh: packages with this Debian's own programs and libraries, in which rpm
# finds what Zephlin's packages require. Needs Tests/Package/support.sh.
: "${source_folder:?}"

# What Zephlin's scriptlets and the test call. systemctl, udevadm and modprobe are replaced, as
# Tests/Package/recordCall.sh says.
machine_programs=(bash sh cat chgrp chmod chown rm stat touch sleep id getent grep env nohup systemd-sysusers)

# Prints the paths of programs or libraries, and of all libraries that they load.
with_libraries() {
    printf '%s\n' "$@"
    ldd "$@" | sed -n 's|^[^/]*\(/[^ ]*\) (0x.*|\1|p'
}

# Copies files and what they link to, below a folder: copy_files FOLDER FILE...
copy_files() {
    local folder=$1 file
    shift
    printf '%s\n' "$@" | sort -u | while read -r file; do
        file=$(realpath --no-symlinks "$(realpath "${file%/*}")/${file##*/}")
        mkdir -p "$folder${file%/*}"
        cp --no-clobber --dereference "$file" "$folder$file"
    done
}

# Makes NAME.rpm of a folder: make_machine_package NAME FOLDER RESULT PROVIDES...
make_machine_package() {
    local name=$1 folder=$2 result=$3 work
    shift 3
    work=$(mktemp -d)
    {
        printf '%s\n' "Name: $name" "Version: 1" "Release: 1" "Summary: $name" "License: x"
        printf 'Provides: %s\n' "$@"
        printf '%s\n' "%description" "%install" "cp -a $folder/. %{buildroot}" "%files"
        (cd "$folder" && find . ! -type d -printf '"/%P"\n')
    } >"$work/$name.spec"
    check "rpmbuild makes $name" env HOME="$work" rpmbuild -bb --define "_topdir $work" \
        --define "__os_install_post %{nil}" --define "debug_package %{nil}" \
        --define "_build_id_links none" --define "_binary_payload w1.gzdio" "$work/$name.spec"
    cp "$work"/RPMS/*/*.rpm "$result/$name.rpm"
    rm -rf "$work"
}

# Makes machine.rpm and qt.rpm in a folder: make_machine_packages FOLDER
make_machine_packages() {
    local result=$1 program folder programs=() tree plugins qt_version
    tree=$(mktemp -d)
    for program in "${machine_programs[@]}"; do
        programs+=("$(command -v "$program")")
    done
    mapfile -t files < <(with_libraries "${programs[@]}" /usr/bin/systemctl \
        /usr/lib/x86_64-linux-gnu/lib{evdev.so.2,stdc++.so.6,udev.so.1,systemd.so.0})
    copy_files "$tree" "${files[@]}" /etc/nsswitch.conf \
        /usr/lib/x86_64-linux-gnu/libnss_{files.so.2,systemd.so.2}
    mv "$tree/usr/bin/systemctl" "$tree/usr/bin/systemctl.real"
    for program in systemctl udevadm modprobe; do
        cp "$source_folder/Tests/Package/recordCall.sh" "$tree/usr/bin/$program"
    done
    # As Fedora's and openSUSE's own packages have them.
    mkdir -p "$tree/usr/lib/systemd/system-preset"
    echo "disable *" >"$tree/usr/lib/systemd/system-preset/99-default-disable.preset"
    for folder in bin sbin lib lib64; do
        ln -s "usr/$folder" "$tree/$folder"
    done
    printf 'root:x:0:0:root:/root:/bin/sh\n' >"$tree/etc/passwd"
    printf 'root:x:0:\ninput:x:104:\n' >"$tree/etc/group"
    make_machine_package machine "$tree" "$result" /bin/sh "rtld(GNU_HASH)" \
        kmod systemd udev hicolor-icon-theme
    rm -rf "$tree"

    tree=$(mktemp -d)
    qt_version=$(pkg-config --modversion Qt6Gui)
    plugins=/usr/lib/x86_64-linux-gnu/qt6/plugins
    mapfile -t files < <(with_libraries /usr/lib/x86_64-linux-gnu/libQt6{Widgets,Svg,DBus}.so.6 \
        /usr/lib/x86_64-linux-gnu/libxcb{,-xinput}.so.? /usr/lib/x86_64-linux-gnu/libxcb-xkb.so.? \
        "$plugins/platforms/libqoffscreen.so")
    copy_files "$tree" "${files[@]}" "$plugins/platforms/libqoffscreen.so"
    # rpm owns a file in one package.
    bsdtar -tf "$result/machine.rpm" | while read -r file; do rm -f "$tree/${file#./}"; done
    make_machine_package qt "$tree" "$result" "qt6-qtbase(x86-64) = $qt_version" "qt6-qtsvg(x86-64)"
    rm -rf "$tree"
}
