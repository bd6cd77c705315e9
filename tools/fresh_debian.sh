# To be sourced: an empty Debian 12 in the folder $debian, removed at the end. Needs root and the network.

make_debian() {
    [[ $(id -u) -eq 0 ]] || { echo "${0##*/}: only root can create an empty Debian" >&2; exit 1; }
    "$(dirname "${BASH_SOURCE[0]}")/setup" packages
    debian=$(mktemp -d)
    remove_at_end
    chmod 755 "$debian"
    debootstrap --variant=minbase bookworm "$debian" >"$debian.log" || { tail "$debian.log" >&2; exit 1; }
    cp /etc/resolv.conf "$debian/etc/"
    echo debian >"$debian/etc/hostname"
    printf '127.0.0.1 localhost\n127.0.1.1 debian\n' >"$debian/etc/hosts"
}

# unshare lets no other signal pass than the one that it cannot refuse.
remove_at_end() {
    inside=
    trap '[[ -z $inside ]] || kill -KILL "$inside"; wait; rm -rf --one-file-system "$debian" "$debian.log"' EXIT
    trap 'exit 130' INT
    trap 'exit 143' TERM
}

# Runs a command there as root: in_debian [--offline] COMMAND...
# It sees nothing of this machine but the kernel and, unless offline, the network. Mounts and processes that it leaves end
# with it, even if it fails or is killed: they live in its own namespaces.
in_debian() {
    local apart=(--mount --uts --ipc --pid --fork --kill-child)
    if [[ $1 == --offline ]]; then
        apart+=(--net)
        shift
    fi
    # A mere chroot could not make user namespaces, which ./test wants.
    env -i PATH="$PATH" unshare "${apart[@]}" bash -euc '
        mount --bind "$0" "$0"
        cd "$0"
        mount -t proc proc proc
        echo debian >proc/sys/kernel/hostname
        mount -t tmpfs tmpfs dev/shm
        mount -t devpts -o newinstance,ptmxmode=666 devpts dev/pts
        pivot_root . mnt
        umount -l /mnt
        exec env PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin HOME=/root "$@"' "$debian" "$@" &
    inside=$! # waited for, since a signal interrupts nothing but that
    local status=0
    wait "$inside" || status=$?
    inside=
    return $status
}
