#!/bin/sh
# Runs a command inside a private D-Bus session whose Secret Service is a freshly created,
# unlocked GNOME Keyring. The keyring lives in a throw-away HOME, so the developer's own keyring
# and session bus are never touched. Works as root, without a display and without a systemd
# user session.
#
#   run-with-keyring.sh <command> [arguments...]
set -eu

for tool in dbus-run-session dbus-send gnome-keyring-daemon; do
    if ! command -v "$tool" >/dev/null 2>&1; then
        echo "run-with-keyring: $tool fehlt; scripts/install-deps installiert es." >&2
        exit 1
    fi
done

scratch=$(mktemp -d "${TMPDIR:-/tmp}/varnis-keyring.XXXXXX")
trap 'rm -rf "$scratch"' EXIT
trap 'exit 130' INT TERM
mkdir -p "$scratch/home" "$scratch/data" "$scratch/config" "$scratch/cache" "$scratch/runtime"
chmod 700 "$scratch/runtime"

export HOME="$scratch/home"
export XDG_DATA_HOME="$scratch/data"
export XDG_CONFIG_HOME="$scratch/config"
export XDG_CACHE_HOME="$scratch/cache"
export XDG_RUNTIME_DIR="$scratch/runtime"
# Nothing may prompt on the developer's screen, and QtKeychain must choose the Secret Service
# even when the developer runs KDE (where it would prefer KWallet).
unset DISPLAY WAYLAND_DISPLAY XDG_CURRENT_DESKTOP DESKTOP_SESSION KDE_FULL_SESSION \
    KDE_SESSION_VERSION GNOME_DESKTOP_SESSION_ID GNOME_KEYRING_CONTROL

# Inside the session: with an empty XDG_DATA_HOME, "--unlock" creates the "login" keyring with
# the password read from stdin, unlocked, and makes it the default collection that libsecret
# stores into. The daemon stays in the foreground so that its pid is known.
# shellcheck disable=SC2016 # expands inside the session, not here
inner='
log="$XDG_RUNTIME_DIR/gnome-keyring.log"
printf %s varnis-test | gnome-keyring-daemon --foreground --unlock --components=secrets >"$log" 2>&1 &
daemon=$!

ready() {
    dbus-send --session --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus \
        org.freedesktop.DBus.NameHasOwner string:org.freedesktop.secrets 2>/dev/null |
        grep -q "boolean true" || return 1
    # Asked only once the name has an owner, so that the bus never activates a second daemon.
    dbus-send --session --print-reply --dest=org.freedesktop.secrets \
        /org/freedesktop/secrets/aliases/default org.freedesktop.DBus.Properties.Get \
        string:org.freedesktop.Secret.Collection string:Locked 2>/dev/null |
        grep -q "boolean false"
}

tries=0
until ready; do
    tries=$((tries + 1))
    if [ "$tries" -ge 100 ] || ! kill -0 "$daemon" 2>/dev/null; then
        echo "run-with-keyring: gnome-keyring-daemon stellt keinen entsperrten Schlüsselbund bereit." >&2
        cat "$log" >&2
        kill "$daemon" 2>/dev/null
        exit 1
    fi
    sleep 0.1
done

status=0
"$@" || status=$?
kill "$daemon" 2>/dev/null
wait "$daemon" 2>/dev/null
exit "$status"
'

status=0
dbus-run-session -- sh -c "$inner" run-with-keyring "$@" || status=$?
exit "$status"
