# SPDX-License-Identifier: MIT
"""The way of the figures: the probe's file, a node exporter, a Prometheus, a query."""

import ctypes
import http.server
import json
import pathlib
import signal
import socket
import subprocess
import tempfile
import threading
import time
import unittest
import urllib.parse
import urllib.request

from dashboard import queries
from machines import FIXTURES, PROBE, RULES, make_fleet, metrics, needs, run

# Seconds; nothing takes so long on a machine that works.
PATIENCE = 60
PR_SET_PDEATHSIG = 1
STYLES = {"prometheus": "text/plain; version=0.0.4",
          "openmetrics": "application/openmetrics-text; version=1.0.0; charset=utf-8"}


def free_port():
    with socket.socket() as taken:
        taken.bind(("127.0.0.1", 0))
        return taken.getsockname()[1]


def end_with_parent():
    ctypes.CDLL(None).prctl(PR_SET_PDEATHSIG, signal.SIGKILL)


def fetch(url):
    with urllib.request.urlopen(url, timeout=PATIENCE) as answer:
        return answer.read().decode()


def until(ask, what):
    """What `ask` returns, once it is neither empty nor an error."""
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        try:
            if answer := ask():
                return answer
        except OSError:
            pass
        time.sleep(0.05)
    raise AssertionError(f"after {PATIENCE} s still not: {what}")


class Fleet(http.server.BaseHTTPRequestHandler):
    """Serves what the probe prints of recorded machines: /STYLE/NAME."""

    texts = {}

    def do_GET(self):
        style = self.path.split("/")[1]
        self.send_response(200)
        self.send_header("Content-Type", STYLES[style])
        self.end_headers()
        self.wfile.write(self.texts[self.path].encode())

    def log_message(self, *_):
        pass


@needs("prometheus", "prometheus-node-exporter")
class Servers(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        cls.start_fleet()
        cls.start_node_exporter()
        cls.start_prometheus()

    @classmethod
    def start(cls, name, *command):
        with open(cls.folder / f"{name}.log", "w") as log:
            process = subprocess.Popen([str(word) for word in command], stdout=log,
                                       stderr=subprocess.STDOUT, cwd=cls.folder,
                                       preexec_fn=end_with_parent)
        cls.addClassCleanup(process.wait)
        cls.addClassCleanup(process.kill)

    @classmethod
    def start_fleet(cls):
        for name, machine in make_fleet(cls.folder / "fleet").items():
            for style in STYLES:
                Fleet.texts[f"/{style}/{name}"] = metrics(machine, "--all", style=style)
        cls.fleet = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Fleet)
        thread = threading.Thread(target=cls.fleet.serve_forever)
        thread.start()
        cls.addClassCleanup(thread.join)
        cls.addClassCleanup(cls.fleet.shutdown)

    @classmethod
    def start_node_exporter(cls):
        # By these the recorded machine's memory is short.
        settings = cls.folder / "thresholds.json"
        settings.write_text('{"settings.memoryModerateThreshold": 1,'
                            ' "settings.memoryHighThreshold": 2}')
        files = cls.folder / "textfiles"
        files.mkdir()
        ended = run(PROBE, "--format=prometheus", f"--output={files}/tarnwick.prom",
                    "--interval=0.1", f"--thresholds={settings}", f"--root={FIXTURES}/laptop")
        assert ended.returncode == 0, ended.stderr
        cls.exporter = f"127.0.0.1:{free_port()}"
        cls.start("exporter", "prometheus-node-exporter", "--collector.disable-defaults",
                  "--collector.textfile", f"--collector.textfile.directory={files}",
                  f"--web.listen-address={cls.exporter}")

    @classmethod
    def start_prometheus(cls):
        # At once, not after minutes.
        lines = [line for line in RULES.read_text().splitlines() if " for: " not in line]
        (cls.folder / "rules.yml").write_text("\n".join(lines) + "\n")
        jobs = [{"job_name": "exporter", "static_configs": [{"targets": [cls.exporter]}]}]
        port = cls.fleet.server_address[1]
        for path in Fleet.texts:
            _, style, name = path.split("/")
            jobs.append({"job_name": f"{style}-{name}", "metrics_path": path, "static_configs": [
                {"targets": [f"127.0.0.1:{port}"], "labels": {"instance": name}}]})
        config = cls.folder / "prometheus.yml"
        config.write_text(json.dumps({
            "global": {"scrape_interval": "500ms", "scrape_timeout": "500ms",
                       "evaluation_interval": "500ms"},
            "rule_files": ["rules.yml"], "scrape_configs": jobs}))
        cls.address = f"127.0.0.1:{free_port()}"
        cls.start("prometheus", "prometheus", f"--config.file={config}",
                  f"--storage.tsdb.path={cls.folder}/data", f"--web.listen-address={cls.address}")

    def ask(self, path, **parameters):
        url = f"http://{self.address}/api/v1/{path}?" + urllib.parse.urlencode(parameters)
        return json.loads(fetch(url))["data"]

    def query(self, text):
        """Labels and value of each sample; waits until there is one."""
        found = until(lambda: self.ask("query", query=text)["result"], text)
        return [(sample["metric"], float(sample["value"][1])) for sample in found]

    def test_the_node_exporter_serves_the_file(self):
        text = until(lambda: fetch(f"http://{self.exporter}/metrics"), "the exporter answers")
        self.assertIn('\ntarnwick_severity{metric="memory"} 2\n', text)
        self.assertIn("\nnode_textfile_scrape_error 0\n", text)

    def test_a_query_returns_the_severity_in_the_file(self):
        [(labels, value)] = self.query('tarnwick_severity{job="exporter",metric="memory"}')
        self.assertEqual((labels["instance"], value), (self.exporter, 2))

    def test_both_styles_say_the_same(self):
        for name in {path.split("/")[2] for path in Fleet.texts}:
            samples = {}
            for style in STYLES:
                found = self.query(f'{{__name__=~"tarnwick_.+",job="{style}-{name}"}}')
                samples[style] = {
                    tuple(sorted((key, label) for key, label in labels.items() if key != "job")):
                    value for labels, value in found}
            self.assertGreater(len(samples["prometheus"]), 30)
            self.assertEqual(samples["prometheus"], samples["openmetrics"])

    def test_two_of_three_machines_alarm(self):
        def firing():
            return {(alert["labels"]["alertname"], alert["labels"]["instance"])
                    for alert in self.ask("alerts")["alerts"] if alert["state"] == "firing"
                    and alert["labels"]["job"].startswith("prometheus-")}

        self.query('tarnwick_severity{job="prometheus-calm"}')
        until(lambda: firing() == {("TarnwickMetricHigh", "full"), ("TarnwickMachineHot", "hot")},
              "two alarms")


    def test_every_query_of_the_dashboard_finds_something(self):
        for title, text in queries():
            with self.subTest(panel=title):
                self.assertTrue(self.query(text))


if __name__ == "__main__":
    unittest.main()
