# SPDX-License-Identifier: MIT
"""Who speaks to the components by the message bus alone."""
import os

from plain_bus import Bus

SWITCHBOARD = f"com.havrel.switchboard._{os.geteuid()}"
ROOM = f"/com/havrel/connection/com_havrel_switchboard__{os.geteuid()}"  # paths of connections to it are below


class Peer(Bus):
    """A component of another house: one connection to the switchboard, and whoever connects to it."""

    def __init__(self, path, handler=None):
        self.path, self.heard, self.calls, self.own = path, [], [], handler
        super().__init__(self.received)

    def received(self, message):
        self.calls.append(message)
        if message.member == "forwardToObserver_notification_fromSource_withInfo_" and message.path == self.path:
            self.heard.append(message.values)
            return "", ()
        if message.member == "barrierWithCompletion_":
            return "", ()
        return self.own(message) if self.own else None

    def ask(self, member, signature="", *values, protocol="ZephronSwitchboarding"):
        return self.call(SWITCHBOARD, self.path, f"com.havrel.{protocol}", member, signature, *values)

    def publish(self, identifier, prefix):
        self.ask("publishEndpoint_forIdentifier_", "(so)s", (self.name, prefix), identifier)

    def notifications(self):
        """Those that were distributed."""
        return [each.values for each in self.signals if each.member == "posted"]

    def where(self, identifier):
        return self.ask("queryEndpointForIdentifier_withReply_", "s", identifier)[0]
