"""How everything is measured: programs in turn on the same files in one run, a home of its own for ours."""

import dataclasses
import json
import os
import pathlib
import platform
import re
import shutil
import statistics
import subprocess
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
SAMPLES = ROOT / "build" / "large-samples"
GROUP = "group.sela.vault"


@dataclasses.dataclass
class Row:
    """One line of the table. The ratio is ours / peer unless one is given; a row without a peer has no aim."""
    what: str
    ours: float
    unit: str
    peer: str = "-"
    theirs: float | None = None
    aim: str = ""
    most: float | None = None  # the largest ratio that meets the aim; without one the row has no aim

    def ratio(self):
        return self.ours / self.theirs if self.theirs else None

    def verdict(self):
        if self.most is None:
            return ""
        return "met" if self.ratio() <= self.most else "missed"


@dataclasses.dataclass
class Measured:
    milliseconds: float
    mebibytes: float  # the peak of the process itself
    helper_mebibytes: float = 0.0  # of the largest process it started and waited for, where that is larger
    read_mebibytes: float = 0.0  # from the disk


class Bench:
    """The folders and programs of one run."""

    def __init__(self, build, runs, long):
        self.bin = pathlib.Path(build).resolve() / "bin"
        self.runs = runs
        self.long = long
        # Beside the sources, not in a temporary folder, which may be memory.
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="bench-", dir=ROOT / "build"))
        self.home = self.folder / "home"
        self.environment = os.environ | {
            "HOME": str(self.home),
            "XDG_DATA_HOME": str(self.home / "data"),
            "XDG_CONFIG_HOME": str(self.home / "config"),
            "LANG": "C.UTF-8",
        }
        self.environment.pop("WAYLAND_DISPLAY", None)

    def close(self):
        shutil.rmtree(self.folder, ignore_errors=True)

    def provision(self):
        """A group of one album, without anything saved."""
        shutil.rmtree(self.home, ignore_errors=True)
        self.home.mkdir()
        catalogue = self.home / "catalogue.json"
        catalogue.write_text(json.dumps([{"namePath": ["Trips"], "fake": False}]))
        passcode = self.home / "passcode"
        passcode.write_text("1234")
        for arguments in (["init"], ["publish", catalogue, "--passcode-file", passcode]):
            subprocess.run([self.bin / "sela-vault", *arguments], env=self.environment, check=True,
                           stdout=subprocess.DEVNULL)

    def saved_files(self):
        return list((self.home / "data/sela/groups" / GROUP / "Items").glob("*"))

    def hurried(self):
        """The clock that the end-to-end tests use: animations and delays take a sixtieth of their time."""
        return self.environment | {"LD_PRELOAD": str(self.bin.parent / "tests/e2e/sela-fast-clock.so"),
                                   "SELA_CLOCK_SPEED": "60"}

    def share(self, files):
        return [self.bin / "sela-share", "--headless", *files, "--tap", "addButton"]

    def run_ours(self, command, environment=None, status=0):
        """Runs sela-share; its own memory is measured apart from its helpers'."""
        peak = self.folder / "peak"
        environment = environment or self.environment
        preloaded = [str(self.bin / "own-peak.so"), environment.get("LD_PRELOAD")]
        measured = self.run(command, environment | {"LD_PRELOAD": ":".join(filter(None, preloaded)),
                                                    "SELA_PEAK_FILE": str(peak)}, status)
        own = int(peak.read_text()) / 1024
        peak.unlink()
        return Measured(measured.milliseconds, own, measured.mebibytes if measured.mebibytes > own else 0.0)

    def run(self, command, environment=None, status=0):
        """Runs a program to its end and checks its exit status."""
        start = time.perf_counter()
        process = subprocess.Popen([str(part) for part in command], env=environment or self.environment,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        _, ended, usage = os.wait4(process.pid, 0)
        elapsed = time.perf_counter() - start
        process.returncode = os.waitstatus_to_exitcode(ended)
        if process.returncode != status:
            raise RuntimeError(f"{command[0]} ended with {process.returncode} instead of {status}")
        return Measured(elapsed * 1000, usage.ru_maxrss / 1024, read_mebibytes=usage.ru_inblock * 512 / 2**20)

    def alternate(self, *runners, most=None):
        """The medians of some runs of each, taken in turn after one that warms up; of what takes minutes `most` at
        most, without warming up. One Measured per runner."""
        taken = [[] for _ in runners]
        for turn in range(min(self.runs, most) if most else self.runs + 1):
            for results, runner in zip(taken, runners):
                measured = runner()
                if turn > 0 or most:
                    results.append(measured)
        return [Measured(statistics.median(m.milliseconds for m in results),
                         max(m.mebibytes for m in results), max(m.helper_mebibytes for m in results),
                         statistics.median(m.read_mebibytes for m in results))
                for results in taken]

    def google(self, program):
        """The median real time, in milliseconds, of each benchmark of a program, by its name and arguments."""
        output = subprocess.run(
            # A single repetition has no median.
            [self.bin / program, "--benchmark_format=json", f"--benchmark_repetitions={max(self.runs, 2)}",
             "--benchmark_report_aggregates_only=true"],
            env=self.environment, check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True).stdout
        scale = {"ns": 1e-6, "us": 1e-3, "ms": 1, "s": 1e3}
        return {re.sub(r"/(iterations:\d+|process_time|real_time)|(?<=/)\w+:", "", benchmark["run_name"]):
                benchmark["real_time"] * scale[benchmark["time_unit"]]
                for benchmark in json.loads(output)["benchmarks"] if benchmark["aggregate_name"] == "median"}


def machine():
    model = next((line.split(":")[1].strip() for line in open("/proc/cpuinfo") if line.startswith("model name")),
                 platform.machine())
    memory = next(int(line.split()[1]) for line in open("/proc/meminfo") if line.startswith("MemTotal"))
    filesystem = subprocess.run(["stat", "-f", "-c", "%T", ROOT], stdout=subprocess.PIPE, text=True).stdout.strip()
    return (f"{model}, {os.cpu_count()} cores, {memory / 2**20:.0f} GiB, Linux {platform.release()}, "
            f"file system {filesystem}")
