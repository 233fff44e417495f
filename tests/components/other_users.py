# SPDX-License-Identifier: MIT
"""Another user at the switchboard of this one."""
import os
import traceback

from bus_peer import ROOM, Peer
import described_interfaces

NOBODY = 65534


def publish_for_nothing():
    """As another user: nobody listens, and nothing comes of it."""
    stranger = Peer(f"{ROOM}/stranger")
    for ask in (lambda: stranger.publish("com.example.false", "/com/example/false"),
                lambda: stranger.where("com.example.echo"),
                lambda: stranger.ask("addProxyObserver_forName_source_", "ssas", "ears", "Greeting", [],
                                     protocol="ZephronSwitchboarding_private"),
                lambda: stranger.ask("postNotificationName_source_userInfo_", "sasa{sv}", "Greeting", [], {})):
        assert described_interfaces.error_of(ask), "another user was heard"


def succeeds_as_nobody(block):
    child = os.fork()
    if child == 0:
        try:
            os.setgroups([])
            os.setresgid(NOBODY, NOBODY, NOBODY)
            os.setresuid(NOBODY, NOBODY, NOBODY)
            block()
            os._exit(0)
        except BaseException:
            traceback.print_exc()
            os._exit(1)
    return os.waitpid(child, 0)[1] == 0


def check_that_they_are_not_heard():
    if os.geteuid() != 0:
        return print("other users: not tried, because only root can be another one")
    peer = Peer(f"{ROOM}/own")
    peer.ask("addProxyObserver_forName_source_", "ssas", "all", "Greeting", [],
             protocol="ZephronSwitchboarding_private")
    assert succeeds_as_nobody(publish_for_nothing)
    assert peer.where("com.example.false") == []
    assert peer.heard == [], peer.heard
    print("other users are not heard")
