# What the packages say about their release; sourced by the scripts that make them. The variable `root` is the
# repository.

release_version()
{
    sed -n 's/^project(SnipBench VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt"
}

# The release's time in seconds since 1970: the given one, else the last commit's, else that of the list of changes.
# Files in packages get this time, so that the same tree gives the same package.
release_time()
{
    if [ -n "${SOURCE_DATE_EPOCH:-}" ]; then
        echo "$SOURCE_DATE_EPOCH"
    elif ! git -C "$root" log -1 --format=%ct 2>/dev/null; then
        stat -c %Y "$root/CHANGELOG.md"
    fi
}

release_date()
{
    date -u -d "@$(release_time)" +%Y-%m-%d
}
