# What the set-up scripts share that take a library or a file from the distribution's source packages; sourced by them,
# beside packages.sh.

# apt with the configured archives, but their source packages, and with its lists in a folder of ours: the system's own
# stay as they are, and no step needs root.
make_source_lists() # FOLDER
{
    local file
    mkdir -p "$1/parts" "$1/lists/partial"
    for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list /etc/apt/sources.list.d/*.sources; do
        [ -f "$file" ] || continue
        case $file in
            *.sources) sed 's/^Types:.*/Types: deb-src/' "$file" >"$1/parts/${file##*/}" ;;
            *) sed -n 's/^deb[[:blank:]]/deb-src /p' "$file" >"$1/parts/from-${file##*/}.list" ;;
        esac
    done
}

apt_sources() # TOOL FOLDER COMMAND...
{
    local tool=$1 folder=$2
    shift 2
    "$tool" -qq -o Dir::Etc::SourceList=/dev/null -o Dir::Etc::SourceParts="$folder/parts" \
        -o Dir::State::Lists="$folder/lists" -o Dir::Cache="$folder" -o APT::Sandbox::User= "$@"
}

# The newest source package that is there: an archive may name one before each of its mirrors has it, and a mirror may
# have its authors' archive alone.
download_source() # SCRATCH PACKAGE
{
    local version
    apt_sources apt-cache "$1/apt" showsrc "$2" | sed -n 's/^Version: //p' | sort -ruV >"$1/versions-$2"
    while read -r version; do
        if apt_sources apt-get "$1/apt" source --download-only "$2=$version" >&2; then
            return
        fi
        echo "Version $version of $2 isn't there." >&2
        rm -f -- *
    done <"$1/versions-$2"
    echo "No version of $2 is there whole; taking its authors' archive, without the distribution's changes." >&2
    apt_sources apt-get "$1/apt" source --download-only --tar-only "$2" >&2
}

# Leaves the source package's tree, with the archive's security fixes where those are there, in SCRATCH/PACKAGE. apt
# checks the archive's signature; the hash pins the version.
fetch_source() # SCRATCH PACKAGE ARCHIVE_PATTERN HASH
{
    local archive
    echo "Fetching the sources of $2" >&2
    mkdir -p "$1/download-$2"
    (cd "$1/download-$2" && download_source "$1" "$2")
    archive=$(find "$1/download-$2" -name "$3")
    if ! has_sha256 "$archive" "$4"; then
        echo "The sources of $2 aren't of the expected version; it is not built." >&2
        exit 1
    fi
    if compgen -G "$1/download-$2/*.dsc" >/dev/null; then
        dpkg-source --no-check -x "$1/download-$2/"*.dsc "$1/$2" >/dev/null
    else
        mkdir "$1/$2"
        tar -xf "$archive" -C "$1/$2" --strip-components=1
    fi
}
