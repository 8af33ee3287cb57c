# GStreamer's own program finds the element where the package puts it, and no other one; the command finds the player.
check_gstreamer() (
    holds gstreamer1.0-clarivex <<END
./$libraries/gstreamer-1.0/libgstclarivex.so
./usr/libexec/clarivex/clarivex-play
./usr/share/doc/gstreamer1.0-clarivex/changelog.gz
./usr/share/doc/gstreamer1.0-clarivex/copyright
END
    export GST_PLUGIN_PATH=$root/$libraries/gstreamer-1.0 GST_PLUGIN_SYSTEM_PATH='' GST_REGISTRY=$root/var/registry
    LD_LIBRARY_PATH=$root/$libraries gst-inspect-1.0 clarivex >"$root/var/page" || fail 'the element is not found'
    grep -q "^  Filename  *$GST_PLUGIN_PATH/libgstclarivex.so\$" "$root/var/page" || fail 'another element is found'
    grep -q "^  Version  *$version\$" "$root/var/page" || fail 'the element tells another version'
    said=$("$root/usr/bin/clarivex" play "$root/none.mkv" 2>&1) && fail 'a film is played that is not there'
    [[ $said = *'none.mkv: '* ]] || fail "the player does not start: $said"
)
