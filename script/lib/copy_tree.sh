# SPDX-License-Identifier: MIT
# Sourced by the scripts that build in a copy of the tree.

# copy_tree <folder>: copies the tree into an empty folder: what git keeps or would keep, as it is in
# the work tree, or everything but what is built where git does not keep the tree.
copy_tree() {
    {
        # Another user may own the tree, for example in a container.
        if [ -e .git ] && command -v git >/dev/null; then
            local git=(git -c "safe.directory=$PWD")
            comm --zero-terminated -23 \
                <("${git[@]}" ls-files -z --cached --others --exclude-standard | LC_ALL=C sort -zu) \
                <("${git[@]}" ls-files -z --deleted | LC_ALL=C sort -zu)
        else
            find . \( -path ./build -o -path ./.cache -o -path ./.git -o -name __pycache__ \) \
                -prune -o ! -type d -print0
        fi
    } | tar --create --null --files-from=- | tar --extract --directory="$1"
}
