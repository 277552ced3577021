"""Descriptions of switches as nobody would build them: whatever topology, settings and media a description can say."""

from __future__ import annotations

import random
from collections.abc import Iterable

SPEEDS = ("1G", "2G", "4G", "8G", "10G", "20G")
MEDIA = ("none", "not applicable", "unknown", "optical", "electrical", "copper passive", "copper active")
ETHERNET_MEDIA = ("10G ethernet", "1G ethernet")
LINES = ("fr4_inches = 6", "fr4_inches = 22\nconnectors = 2", "copper_metres = 3", "optical_host_inches = 8")
NAMES = ("", " ", "T", "%s%n", 'a\\"b', "\\\\", "SERDES 7", "äö", "NINETEEN_CHARACTERS", "#]'")
ETHERNET_TYPES = (4, 6)
OTHER_TYPES = (0, 1, 2, 3, 5)
SETTINGS = 5  # of either kind


class RandomSwitch:
    """Everything follows from the seed."""

    def __init__(self, seed: int) -> None:
        self.draw = random.Random(seed)

    def text(self) -> str:
        text = ""
        if self.chance(3):
            text += f"type_names = {quoted(self.draw.choice(NAMES) for _ in range(7))}\n"
        for number in range(SETTINGS):
            text += f"[settings.s{number}]\n{self.settings()}[settings.e{number}]\n{self.ethernet_settings()}"
        for number, line in enumerate(LINES):
            text += f"[channels.c{number}]\n{line}\n"
        self.users = iter(self.draw.sample(range(100), 48))
        return text + "".join(self.asic() for _ in range(self.draw.choice((1, 1, 2))))

    def chance(self, of: int) -> bool:
        return self.draw.randrange(of) == 0

    def settings(self) -> str:
        draw = self.draw
        if self.chance(4):
            numbers = [draw.choice((0, 1, 2, 3, 7, 50, 115, -4, 70000)) for _ in range(12)]
            return f"tx = {numbers[:7]}\nrx = {numbers[7:]}\n"
        return (
            f'raw = true\npower = {draw.randrange(60, 200)}\nffe = "{draw.choice(("FFENone", "FFE2", "FFE3", "FFE4"))}"\n'
            f"taps = {[-draw.randrange(6), draw.randrange(45, 64), -draw.randrange(26), draw.randrange(-2, 2)]}\n"
            f"slew = {draw.choice((24, 30, 36, 50, 60, 75, 100))}\n"
            f'dfe = "{draw.choice(("NONE", "DFE1", "DFE3", "DFE5"))}"\n'
            f"pole = {draw.randrange(8)}\npeak = {draw.randrange(8)}\namax = {draw.randrange(40, 128)}\n"
        )

    def ethernet_settings(self) -> str:
        draw = self.draw
        beyond = 4 if self.chance(6) else 0  # what no SerDes takes
        return (
            f"raw = true\npower = {draw.randrange(16) + beyond}\npre_emphasis = {draw.randrange(16)}\n"
            f"cdr_mode = {draw.randrange(4) + beyond}\neq_mode = {draw.randrange(8)}\n"
        )

    def asic(self) -> str:
        types = [self.draw.choice(OTHER_TYPES + ETHERNET_TYPES) for _ in range(self.draw.randrange(1, 7))]
        text = "[[asics]]\n"
        for core, serdes_type in enumerate(types):
            text += f"[[asics.cores]]\ncores = {core}\ntype = {serdes_type}\n"
            for side in ("pll", "rx", "tx"):
                text += f"{side}_registers = {self.draw.randrange(33)}\n" if self.chance(4) else ""
        port, count = 0, self.draw.randrange(1, 25)
        while port < count:
            pair = port + 1 < count and self.chance(4)
            for number in (port, port + 1) if pair else (port,):
                text += self.port(number, types, (2 * port + 1 - number) if pair else None)
            port += 2 if pair else 1
        return text

    def port(self, number: int, types: list[int], peer: int | None) -> str:
        draw = self.draw
        rx_core = draw.randrange(len(types))
        tx_core = draw.randrange(len(types)) if self.chance(8) else rx_core
        ethernet = types[rx_core] in ETHERNET_TYPES
        if self.chance(12):
            ethernet = not ethernet
        kind = "EXG" if ethernet else draw.choice(("GL", "GL", "XG"))
        text = f'[[asics.ports]]\nports = {number}\nkind = "{kind}"\nrx_core = {rx_core}\ntx_core = {tx_core}\n'
        if any((types[core] in ETHERNET_TYPES) != ethernet for core in (rx_core, tx_core)):
            text += "misplaced = true\n"
        text += f"user_port = {next(self.users)}\n" if not self.chance(5) else ""
        text += f"rx_links = {draw.randrange(5)}\ntx_links = {draw.randrange(5)}\n" if self.chance(6) else ""
        text += "present = false\n" if self.chance(15) else ""
        text += f"port_type = {draw.choice((0, 9))}\n" if self.chance(15) else ""
        return text + self.state(ethernet, peer) + self.far_end(ethernet, peer)

    def state(self, ethernet: bool, peer: int | None) -> str:
        draw = self.draw
        speeds = sorted(draw.sample(SPEEDS, draw.randrange(1, 7)), key=SPEEDS.index)
        names = "e" if ethernet else "s"
        cache = ", ".join(f'{speed} = "{names}{draw.randrange(SETTINGS)}"' for speed in SPEEDS)
        text = f'speeds = {quoted(speeds)}\nspeed = "{draw.choice([*speeds, "AUTO"])}"\ncache = {{ {cache} }}\n'
        text += f'media = "{draw.choice(ETHERNET_MEDIA if ethernet and not self.chance(4) else MEDIA)}"\n'
        text += f'channel = "c{draw.randrange(len(LINES))}"\n'
        text += f'live = "{names}{draw.randrange(SETTINGS)}"\n' if self.chance(3) else ""
        return text + ("sends = false\n" if self.chance(8) else "")

    def far_end(self, ethernet: bool, peer: int | None) -> str:
        if peer is not None:
            return f"far_end = {peer}\n"
        settings = f'"{"e" if ethernet else "s"}{self.draw.randrange(SETTINGS)}"'
        return self.draw.choice(
            ('far_end = "loop"\n', 'far_end = "nothing"\n', f"partner = {{ settings = {settings} }}\n")
        )


def quoted(texts: Iterable[str]) -> str:
    return "[" + ", ".join(f'"{text}"' for text in texts) + "]"
