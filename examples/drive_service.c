// SPDX-License-Identifier: GPL-2.0-or-later
/*
 * Skeleton of a drive service for Linux: a program that owns a camera's focus motor and answers to the library. The
 * motor here is only a timer; replace the functions under "The motor" by your camera's. docs/linux.md has the packets.
 *
 *   cc -std=c11 drive_service.c -o drive_service
 *   ./drive_service &  tesmor devices;  tesmor move 90
 */
#define _GNU_SOURCE /* accept4, struct ucred */
#include <errno.h>
#include <poll.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/timerfd.h>
#include <sys/un.h>
#include <unistd.h>

enum { UNIT = 0, REQUEST = 0x222059, RESET_ACK = 0x222035, MOVE = 0xD1, OPEN = 0xD2, CLOSE = 0xD3 };
enum { LISTENER, MOTOR, FIRST_CLIENT, WATCHED = FIRST_CLIENT + 8 };

/* What poll watches; clients that are not there are -1, which it passes by. */
static struct pollfd fds[WATCHED];
static int holder = -1; /* the client that has opened the drive, -1: none. Who has only connected holds nothing. */
static int mover = -1;  /* the client that waits for the end of its move */
static int moving;

/* The motor: its descriptor becomes readable when a move has ended. */

static int beginMove(unsigned steps, int reverse)
{
    const long nanoseconds = steps * 39062L + 1; /* 25600 steps a second */
    const struct itimerspec end = {.it_value = {nanoseconds / 1000000000, nanoseconds % 1000000000}};
    printf("%u steps %s\n", steps, reverse ? "in reverse" : "forward");
    return timerfd_settime(fds[MOTOR].fd, 0, &end, NULL) == 0;
}

static void endMove(void)
{
    uint64_t expirations;
    if (read(fds[MOTOR].fd, &expirations, sizeof expirations) < 0)
        perror("motor");
}

/* The link */

static int listenOn(unsigned unit)
{
    struct sockaddr_un address = {.sun_family = AF_UNIX}; /* sun_path[0] stays 0: an abstract name */
    const int nameLength = snprintf(address.sun_path + 1, sizeof address.sun_path - 1, "braskdrv-%u-1010", unit);
    const socklen_t length = (socklen_t)(offsetof(struct sockaddr_un, sun_path) + 1 + (size_t)nameLength);
    const int listener = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    if (bind(listener, (struct sockaddr*)&address, length) || listen(listener, 8)) {
        perror("unit 0");
        exit(1);
    }
    return listener;
}

static int take(int client);

static void dismiss(int client)
{
    close(fds[client].fd);
    fds[client].fd = -1;
    if (holder == client)
        holder = -1;
    if (mover == client)
        mover = -1; /* a move under way goes on; nobody waits for its end */
}

/* But look first whether the holder has gone: a library that closes its link and opens the next is not turned away. */
static int isHeldByAnother(int client)
{
    while (holder >= 0 && holder != client && take(holder)) {
    }
    return holder >= 0 && holder != client;
}

/* Only one that runs as root or as our own user comes in. */
static void acceptClient(void)
{
    struct ucred peer = {0};
    socklen_t length = sizeof peer;
    const int fd = accept4(fds[LISTENER].fd, NULL, NULL, SOCK_CLOEXEC);
    int place = FIRST_CLIENT;
    while (place < WATCHED && fds[place].fd >= 0)
        ++place;
    if (place < WATCHED && getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0 &&
        (peer.uid == 0 || peer.uid == geteuid()) && !isHeldByAnother(place))
        fds[place].fd = fd;
    else
        close(fd);
}

/* One request of the library's focus drive. Whether it is accepted. */
static int carryOut(const uint8_t* request, int client)
{
    const unsigned direction = request[6] | (unsigned)request[7] << 8;
    const unsigned steps = request[8] | (unsigned)request[9] << 8;
    if (request[4] == MOVE && !moving && beginMove(steps, direction > 0x7FFF)) {
        mover = client;
        return moving = 1;
    }
    if (request[4] == OPEN)
        holder = client;
    if (request[4] == CLOSE && holder == client)
        holder = -1;
    return request[4] == OPEN || request[4] == CLOSE;
}

/* Takes one packet and replies to it. 0 when there is none, or the client has gone. */
static int take(int client)
{
    uint8_t packet[32];
    uint8_t reply[5] = {0}; /* the control code, then whether the request was accepted */
    const ssize_t length = recv(fds[client].fd, packet, sizeof packet, MSG_DONTWAIT);
    uint32_t code = 0;
    if (length < 0 && (errno == EAGAIN || errno == EINTR))
        return 0;
    for (int i = 0; i < 4 && i < length; ++i) {
        reply[i] = packet[i];
        code |= (uint32_t)packet[i] << 8 * i;
    }
    if (length <= 0 || (code == REQUEST && isHeldByAnother(client))) {
        dismiss(client);
        return 0;
    }
    if (code == REQUEST && length == 4 + 10)
        reply[4] = (uint8_t)carryOut(packet + 4, client);
    else if (code == RESET_ACK && length == 4 + 4)
        reply[4] = 1; /* acknowledgements that wait to be read are forgotten; here none ever waits */
    if (send(fds[client].fd, reply, sizeof reply, MSG_NOSIGNAL) == sizeof reply)
        return 1;
    dismiss(client);
    return 0;
}

int main(void)
{
    setvbuf(stdout, NULL, _IOLBF, 0);
    for (int i = 0; i < WATCHED; ++i)
        fds[i] = (struct pollfd){-1, POLLIN, 0};
    fds[LISTENER].fd = listenOn(UNIT);
    fds[MOTOR].fd = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC);
    while (poll(fds, WATCHED, -1) > 0) {
        if (fds[MOTOR].revents) {
            const uint8_t acknowledgement = 1;
            endMove();
            moving = 0;
            if (mover >= 0)
                send(fds[mover].fd, &acknowledgement, 1, MSG_NOSIGNAL);
            mover = -1;
        }
        for (int client = FIRST_CLIENT; client < WATCHED; ++client) {
            if (fds[client].fd >= 0 && fds[client].revents)
                take(client);
        }
        if (fds[LISTENER].revents)
            acceptClient();
    }
    return 1;
}
