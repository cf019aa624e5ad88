# Functions that the set-up scripts share; sourced by them.

has_sha256() # FILE HASH
{
    [ -f "$1" ] && [ "$(sha256sum <"$1")" = "$2  -" ]
}

# The number of the release, such as 12; empty on another system, and before a release has one.
debian_release()
(
    ID='' VERSION_ID=''
    . "${OS_RELEASE:-/etc/os-release}" || true
    if [ "$ID" = debian ]; then
        echo "$VERSION_ID"
    fi
)

list_missing_packages() # PACKAGE...
{
    local installed
    installed=$(dpkg-query -W -f '${db:Status-Abbrev}${Package}\n' "$@" 2>/dev/null || true)
    printf '%s\n' "$@" | grep -Fxv -f <(sed -n 's/^ii //p' <<<"$installed") || true
}

install_packages() # PACKAGE...
{
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            printf 'These packages are missing. Install them as root with this command, then start again:\n\n' >&2
            printf '    apt-get update && apt-get install -y --no-install-recommends %s\n\n' "$*" >&2
            exit 1
        fi
        as_root=(sudo)
    fi
    echo "Installing: $*" >&2
    "${as_root[@]}" apt-get update -qq >&2
    # A settings file that was changed here stays as it is: without an answer, the question ends the set-up.
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends -o Dpkg::Options::=--force-confold "$@" >&2
}

require_packages() # PACKAGE...
{
    local missing
    if ! command -v dpkg-query >/dev/null; then
        echo "This isn't a Debian system: what Debian calls $* has to be there already." >&2
        return
    fi
    mapfile -t missing < <(list_missing_packages "$@")
    if [ ${#missing[@]} -gt 0 ]; then
        install_packages "${missing[@]}"
    fi
}
