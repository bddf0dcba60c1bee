#!/usr/bin/env python3
"""Goes the last steps of docs/real-targets.md: from a port's samples to what a decoder lists.

usage: tests/decoder_road.py FOLDER

Random frames come through tools/trace-frames unharmed at each width of the port, whatever
synchronization stands between them; so does the hand-made frame of the guide, which trc_pkt_lister
then decodes by the guide's own snapshot. Works in FOLDER; ends with status 0 if all that holds.
"""
import pathlib
import random
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
FRAMES = ROOT / "tools/trace-frames"
FULL_SYNC = b"\xff\xff\xff\x7f"
HALF_SYNC = b"\xff\x7f"


def samples(stream, width):
    """Returns what an analyser sees of `stream`: two samples for each edge of the clock."""
    bits = "".join(format(byte, "08b")[::-1] for byte in stream)
    seen = bytearray()
    for edge, at in enumerate(range(0, len(bits), width)):
        data = int(bits[at:at + width][::-1], 2)
        seen += bytes((data << 1 | edge & 1, data << 1 | (edge + 1) & 1))
    return bytes(seen)


def take(folder, stream, width):
    (folder / "samples.bin").write_bytes(samples(stream, width))
    subprocess.run([FRAMES, "port", "--width", str(width), "samples.bin", "trace.bin"],
                   cwd=folder, check=True, stdout=subprocess.DEVNULL, timeout=60)
    return (folder / "trace.bin").read_bytes()


def any_frame(source):
    """No half-word of it looks like synchronization."""
    while True:
        frame = source.randbytes(16)
        if all(frame[i:i + 2] not in (b"\xff\xff", HALF_SYNC) for i in range(16)):
            return frame


def through_the_port(folder):
    source = random.Random(20261123)
    for width in (1, 2, 4):
        sent = [any_frame(source) for _ in range(200)]
        stream = FULL_SYNC
        for frame in sent:
            stream += source.choice((b"", FULL_SYNC, HALF_SYNC, HALF_SYNC + FULL_SYNC))
            cut = 2 * source.randrange(9)
            stream += frame[:cut] + source.choice((b"", HALF_SYNC)) + frame[cut:]
        got = take(folder, stream, width)
        if got != b"".join(sent):
            sys.exit(f"width {width}: {len(got) // 16} frames came out, {len(sent)} went in")


def write_snapshot(folder):
    """Writes the guide's four texts, with the program at address 0."""
    guide = (ROOT / "docs/real-targets.md").read_text()
    block = re.search(r"```\n(snapshot\.ini:.*?)```", guide, re.S)
    if not block:
        sys.exit("the guide has no snapshot")
    texts, name = {}, None
    for line in block[1].replace("address=0x08000000", "address=0x0").splitlines():
        if head := re.match(r"(\w+\.ini):", line):
            name = head[1]
        texts.setdefault(name, []).append(line.removeprefix(f"{name}:").strip())
    for name, lines in texts.items():
        (folder / name).write_text("\n".join(lines) + "\n")
    (folder / "prog.bin").write_bytes(b"\x00\xbf" * 0x8000)  # Thumb: nop


def through_the_decoder(folder):
    guide = (ROOT / "docs/real-targets.md").read_text()
    frame = bytes.fromhex(re.search(r"h='ffffff7f(\w{32})'", guide)[1])
    if take(folder, FULL_SYNC + frame, 4) != frame:
        sys.exit("the guide's frame does not come through")
    write_snapshot(folder)
    listed = subprocess.run(["trc_pkt_lister", "-ss_dir", ".", "-decode", "-logstdout"], cwd=folder,
                            check=True, capture_output=True, text=True, timeout=60).stdout
    (folder / "listed.txt").write_text(listed)
    for what in ("A_SYNC", r"I_SYNC.*Addr=0x00000100", r"P_HDR.*EE", r"INSTR_RANGE\(exec range=0x100"):
        if not re.search(what, listed):
            sys.exit(f"the decoder lists no {what}, see {folder}/listed.txt")


def main():
    folder = pathlib.Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    through_the_port(folder)
    through_the_decoder(folder)
    print("600 frames came through the port unharmed; the decoder lists the guide's frame")


if __name__ == "__main__":
    main()
