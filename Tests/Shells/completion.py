#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Types command lines into real shells, presses Tab, and looks at what stands on the line then.

Usage: completion.py VORTO SHELL ...      (bash, zsh, fish; those that are not there are told and left out, bash excepted)
"""
import os
import pty
import select
import shutil
import subprocess
import sys
import tempfile
import time

# What is typed, and what the line is after Tab; one for all shells, or one for each.
CASES = [
    ("vorto ren", "vorto render "),
    ("vorto render --work", "vorto render --working-space "),
    ("vorto render --output o.png Gradient\\ M", "vorto render --output o.png Gradient\\ Map "),
    ("vorto render 'Gradient M", "vorto render 'Gradient Map' "),
    ("vorto render Noise --depth ha", "vorto render Noise --depth half "),
    ("vorto render Noise --pixel-format=yu", "vorto render Noise --pixel-format=yuv422 "),
    ("vorto render Levels --set le", "vorto render Levels --set levels="),
    ("vorto render Levels --set levels.red.g", "vorto render Levels --set levels.red.gamma="),
    ("vorto render Checkerboard --set firstColor=orc", "vorto render Checkerboard --set firstColor=orchid "),
    ("vorto render Gradient\\ Map --state g", "vorto render Gradient\\ Map --state gradient="),
    ("vorto render Gradient\\ Map --state gradient=preset:Cyano",
     "vorto render Gradient\\ Map --state gradient=preset:Cyanotype "),
    ("vorto render Gradient\\ Map --state gradient=sun", "vorto render Gradient\\ Map --state gradient=sunset.plist "),
    ("vorto render Levels -i a\\ p", "vorto render Levels -i a\\ picture.png "),
    ("vorto state preset:Cyano", "vorto state preset:Cyanotype "),
    ("vorto submit -- render Chec", "vorto submit -- render Checkerboard "),
    ("vorto submit --logs fol", "vorto submit --logs folder/"),
    ("vorto completion z", "vorto completion zsh "),
    ("vorto render Nothing\\ Such --set x", "vorto render Nothing\\ Such --set x"),
]

KEY = "\x07"  # writes the line to a file
SETUP = {
    "bash": r"""bind 'set bell-style none'; bind -x '"\C-g": printf "%s" "$READLINE_LINE" >{file}'; source <(vorto completion bash)""",
    "zsh": r"""unsetopt beep; autoload -U compinit; compinit -D; source <(vorto completion zsh); """
           r"""tell() {{ print -rn -- "$BUFFER" >{file} }}; zle -N tell; bindkey '^G' tell""",
    "fish": r"""vorto completion fish | source; bind \cg 'commandline | string join "" >{file}'""",
}
START = {"bash": ["bash", "--norc", "--noprofile", "-i"], "zsh": ["zsh", "-f", "-i"], "fish": ["fish", "--no-config", "-i"]}


class Shell:
    def __init__(self, name, folder, environment):
        self.file = os.path.join(folder, "line")
        self.child, self.terminal = pty.fork()
        if self.child == 0:
            os.chdir(os.path.join(folder, "work"))
            os.execvpe(START[name][0], START[name], environment)
        self.write(SETUP[name].format(file=self.file) + "\n")
        self.line("")

    def write(self, text):
        os.write(self.terminal, text.encode())

    def drain(self, seconds):
        while select.select([self.terminal], [], [], seconds)[0]:
            try:
                if not os.read(self.terminal, 65536):
                    return
            except OSError:  # the shell has ended
                return

    def line(self, typed):
        """What stands on the line after Tab, which is no less than before; the line is emptied."""
        if os.path.exists(self.file):
            os.remove(self.file)
        self.write(typed + ("\t" if typed else "") + KEY)
        end = time.monotonic() + 20
        while time.monotonic() < end:
            self.drain(0.02)
            if os.path.exists(self.file) and os.path.getsize(self.file) >= len(typed):
                with open(self.file, encoding="utf-8") as file:
                    text = file.read()
                self.write("\x15")  # Control-U
                return text.rstrip("\n")
        raise SystemExit("completion.py: the shell does not answer")

    def close(self):
        os.write(self.terminal, b"\x15exit\n")
        self.drain(0.2)
        os.close(self.terminal)
        os.waitpid(self.child, 0)


def faults(name, folder, environment):
    shell = Shell(name, folder, environment)
    wrong = []
    for typed, expected in CASES:
        got = shell.line(typed)
        if got.rstrip(" ") != expected.rstrip(" ") or (expected.endswith("=") and got != expected):
            wrong.append(f"{name}: {typed!r} became {got!r}, not {expected!r}")
    shell.close()
    return wrong


def main():
    vorto, names = os.path.realpath(sys.argv[1]), sys.argv[2:]
    wrong = []
    with tempfile.TemporaryDirectory() as folder:
        work = os.path.join(folder, "work")
        os.makedirs(os.path.join(work, "folder"))
        for file in ("sunset.plist", "a picture.png"):
            open(os.path.join(work, file), "w", encoding="utf-8").close()
        environment = {"PATH": os.path.dirname(vorto) + ":" + os.environ["PATH"], "HOME": folder, "TERM": "xterm",
                       "LC_ALL": "C.UTF-8", "PS1": "> "}
        for name in names:
            if not shutil.which(name):
                print(f"completion.py: there is no {name}: left out")
                continue
            wrong += faults(name, folder, environment)
        times = []
        for _ in range(5):
            begin = time.monotonic()
            subprocess.run([vorto, "complete", "--", "render", "Levels", "--set", ""], env=environment, check=True,
                           stdout=subprocess.DEVNULL)
            times.append(time.monotonic() - begin)
        print(f"completion.py: {len(CASES)} lines; the words come in {1000 * sorted(times)[2]:.0f} ms")
    for fault in wrong:
        print(fault, file=sys.stderr)
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
