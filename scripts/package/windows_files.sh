# What both packages for Windows start from, to be sourced where $folder is the build folder: $version, the temporary folder $stage,
# and strip_into, which fills the folder $name in it.
version=$(sed -n 's/.*versionText = "\(.*\)".*/\1/p' "$folder/windows-x86/generated/runtime/version.h")
stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT

# strip_into MACHINE BUILT TARGET: without the debug information, which is most of a file.
strip_into() {
    local target=$stage/$name/$3
    mkdir -p "$(dirname "$target")"
    "$1-w64-mingw32-strip" -o "$target" "$folder/$2"
}
