#!/usr/bin/python3 -B
# SPDX-License-Identifier: MIT
"""A fleet's metrics in a real Prometheus: the text of recorded machines as so many files.

    benchmarks/probe_fleet.py [PROBE] [MACHINES]

Serves the files on a loopback port, scrapes each of them every ten seconds for a minute, and prints
what a scrape is, what the server took in, what it needs and how long it thinks about queries."""

import http.server
import json
import pathlib
import re
import shutil
import socket
import statistics
import subprocess
import sys
import tempfile
import threading
import time
import urllib.parse
import urllib.request

ROOT = pathlib.Path(__file__).resolve().parent.parent
INTERVAL = 10
DURATION = 60
QUERIES = ("max by (instance) (tarnwick_severity)",
           "count(max by (instance) (tarnwick_severity) == 2) or vector(0)",
           "topk(10, tarnwick_memory_used_ratio)",
           "topk(10, sum by (application) (tarnwick_application_memory_bytes))",
           "avg_over_time(tarnwick_memory_used_ratio[1m])")


class Server(http.server.ThreadingHTTPServer):
    request_queue_size = 1024

    def handle_error(self, *_):
        """Prometheus is killed in the middle of its scrapes."""


class Files(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    folder = None

    def do_GET(self):
        text = (self.folder / pathlib.Path(self.path).name).read_bytes()
        self.send_response(200)
        self.send_header("Content-Type", "text/plain; version=0.0.4")
        self.send_header("Content-Length", str(len(text)))
        self.end_headers()
        self.wfile.write(text)

    def log_message(self, *_):
        pass


def fetch(url):
    with urllib.request.urlopen(url, timeout=60) as answer:
        return answer.read().decode()


def texts(probe):
    """The metrics of each recorded machine."""
    machines = sorted(path.parent for path in (ROOT / "tests/fixtures").glob("*/proc"))
    return {machine.name: subprocess.run(
        [probe, "--format", "prometheus", "--interval", "0.01", "--root", machine],
        capture_output=True, text=True, check=True).stdout for machine in machines}


def samples(text):
    return sum(not line.startswith("#") for line in text.splitlines())


def figure(text, name):
    return float(re.search(rf"^{name}(?:{{.*}})? (\S+)$", text, re.MULTILINE).group(1))


def main():
    probe = sys.argv[1] if len(sys.argv) > 1 else str(ROOT / "build/release/tools/tarnwick-probe")
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 2000
    if not shutil.which("prometheus"):
        sys.exit("there is no prometheus here")
    recorded = texts(probe)
    for name, text in recorded.items():
        print(f"{name:18} {samples(text):4} series, {len(text):6} bytes")
    n = statistics.median(map(samples, recorded.values()))
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        Files.folder = folder / "files"
        Files.folder.mkdir()
        kinds = list(recorded.values())
        for number in range(count):
            # Machines differ in their figures.
            text = re.sub(r"^(tarnwick_memory_used_ratio) .*$",
                          rf"\1 {number * 37 % count / count}", kinds[number % len(kinds)],
                          flags=re.MULTILINE)
            (Files.folder / f"{number}.prom").write_text(text)
        server = Server(("127.0.0.1", 0), Files)
        thread = threading.Thread(target=server.serve_forever, daemon=True)
        thread.start()
        address = f"127.0.0.1:{server.server_address[1]}"
        (folder / "prometheus.yml").write_text(json.dumps({
            "global": {"scrape_interval": f"{INTERVAL}s", "scrape_timeout": f"{INTERVAL}s"},
            "scrape_configs": [{"job_name": "fleet", "static_configs": [
                {"targets": [address], "labels": {"instance": f"machine-{number}",
                                                  "__metrics_path__": f"/{number}.prom"}}
                for number in range(count)]}]}))
        with socket.socket() as taken:
            taken.bind(("127.0.0.1", 0))
            port = taken.getsockname()[1]
        process = subprocess.Popen(
            ["prometheus", f"--config.file={folder}/prometheus.yml",
             f"--storage.tsdb.path={folder}/data", f"--web.listen-address=127.0.0.1:{port}"],
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        try:
            watch(process, f"http://127.0.0.1:{port}", count, n)
        finally:
            process.kill()
            process.wait()
            server.shutdown()


def watch(process, url, count, n):
    # All series are there after one interval.
    time.sleep(INTERVAL + 5)
    first, begun = fetch(f"{url}/metrics"), time.monotonic()
    time.sleep(DURATION)
    last, seconds = fetch(f"{url}/metrics"), time.monotonic() - begun
    counter = "prometheus_tsdb_head_samples_appended_total"
    rate = (figure(last, counter) - figure(first, counter)) / seconds
    used = (figure(last, "process_cpu_seconds_total")
            - figure(first, "process_cpu_seconds_total")) / seconds
    series = figure(last, "prometheus_tsdb_head_series")
    print(f"{count} machines every {INTERVAL} s: {series:.0f} series, {rate:.0f} samples a second, "
          f"{100 * used:.0f} % of a processor, "
          f"{figure(last, 'process_resident_memory_bytes') / 1e6:.0f} MB")
    print(f"10000 machines of {n:.0f} series and 5 of the server's every 30 s would be "
          f"{10000 * (n + 5):.0f} series, {10000 * (n + 5) / 30:.0f} samples a second")
    for query in QUERIES:
        times = []
        for _ in range(5):
            before = time.perf_counter()
            answer = json.loads(fetch(f"{url}/api/v1/query?" + urllib.parse.urlencode(
                {"query": query})))
            times.append((time.perf_counter() - before) * 1e3)
        print(f"{statistics.median(times):8.1f} ms, {len(answer['data']['result']):5} rows: {query}")


if __name__ == "__main__":
    main()
