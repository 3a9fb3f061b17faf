#!/usr/bin/env python3
"""Runs a command while the demo's service answers on its own port, and ends with what the command ended with.

    with_demo_service.py BUILD HOST COMMAND...
"""
import os
import subprocess
import sys
import tempfile
from pathlib import Path


def main():
    build, host, *command = sys.argv[1:]
    tls = Path(os.environ["QUILLMAR_TLS_DIR"])
    with tempfile.TemporaryDirectory() as folder:
        options = {"host": host, "port": "443", "certificate": tls / "server.pem", "key": tls / "server.key",
                   "catalogue": Path(build, "catalogue"), "log": Path(folder, "requests.log")}
        words = [word for name, value in options.items() for word in (f"--{name}", str(value))]
        with subprocess.Popen([Path(build, "service/quillmar-demo-service"), *words], stdout=subprocess.PIPE,
                              text=True) as service:
            try:
                if not any(line == "ready\n" for line in service.stdout):
                    sys.exit("the demo service is not ready")
                return subprocess.run(command, check=False).returncode
            finally:
                service.terminate()


sys.exit(main())
