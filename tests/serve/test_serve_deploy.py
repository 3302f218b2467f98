"""The shipped deployment files: the Kubernetes manifests parse, probe
/health and /ready and hand tov serve options that it takes; the ConfigMap's
documents load; the systemd unit reloads with SIGHUP. (nginx's configuration
is tested by the scale-out test.)"""

import shlex

import yaml

from serving import SOURCE, Server, run_tov

DEPLOY = SOURCE / "deploy"


def manifests():
    documents = {}
    for path in sorted((DEPLOY / "kubernetes").glob("*.yaml")):
        for document in yaml.safe_load_all(path.read_text()):
            documents[document["kind"]] = document
    return documents


def test_the_manifests_parse_and_fit_together():
    documents = manifests()
    assert set(documents) == {"ConfigMap", "Deployment", "Service"}
    deployment, service = documents["Deployment"], documents["Service"]
    pod = deployment["spec"]["template"]
    assert deployment["spec"]["selector"]["matchLabels"].items() <= pod["metadata"]["labels"].items()
    assert service["spec"]["selector"].items() <= pod["metadata"]["labels"].items()
    container = pod["spec"]["containers"][0]
    port_names = {port["name"] for port in container["ports"]}
    assert service["spec"]["ports"][0]["targetPort"] in port_names
    assert container["livenessProbe"]["httpGet"]["path"] == "/health"
    assert container["readinessProbe"]["httpGet"]["path"] == "/ready"
    for probe in ("livenessProbe", "readinessProbe"):
        assert container[probe]["httpGet"]["port"] in port_names
    mounted = {volume["name"]: volume for volume in pod["spec"]["volumes"]}
    documents_mount = [mount for mount in container["volumeMounts"]
                       if mount["name"] == "documents"][0]
    assert mounted["documents"]["configMap"]["name"] == documents["ConfigMap"]["metadata"]["name"]
    arguments = dict(argument.split("=", 1) for argument in container["args"] if "=" in argument)
    for option, key in (("--rules", "rules.json"), ("--dm", "datamodel.json")):
        assert arguments[option] == documents_mount["mountPath"] + "/" + key
        assert key in documents["ConfigMap"]["data"]
    # Each pod listens on its own address, never on every interface.
    assert arguments["--listen"] == "$(POD_IP):8480"
    environment = {variable["name"]: variable for variable in container["env"]}
    assert environment["POD_IP"]["valueFrom"]["fieldRef"]["fieldPath"] == "status.podIP"
    assert container["ports"][0]["containerPort"] == 8480
    # Probes need no token, and the grace fits within the pod's.
    assert "--token-file" in arguments
    assert float(arguments["--grace"]) < pod["spec"]["terminationGracePeriodSeconds"]


def test_tov_serve_takes_the_deployments_arguments_with_the_config_maps_documents(tmp_path):
    documents = manifests()
    for key, text in documents["ConfigMap"]["data"].items():
        (tmp_path / key).write_text(text)
    status, out, _ = run_tov("check", "--strict", "--rules", tmp_path / "rules.json", "--dm",
                             tmp_path / "datamodel.json")
    assert status == 0, out
    (tmp_path / "token").write_text("a-token\n")
    container = documents["Deployment"]["spec"]["template"]["spec"]["containers"][0]
    assert container["args"][0] == "serve"
    replaced = {"--rules": tmp_path / "rules.json", "--dm": tmp_path / "datamodel.json",
                "--listen": "127.0.0.1:0", "--token-file": tmp_path / "token"}
    arguments = []
    for argument in container["args"][1:]:
        option = argument.split("=", 1)[0]
        if option in replaced:
            argument = "%s=%s" % (option, replaced[option])
        arguments.append(argument)
    with Server(*arguments, rules=None, listen=None) as server:
        assert server.get("/health").status == 200
        assert server.get("/ready").status == 200
        assert server.get("/v1/status").status == 401


def unit_lines(path):
    """The unit's lines with continuations joined."""
    lines, current = [], ""
    for line in path.read_text().splitlines():
        if line.startswith("#"):
            continue
        if line.endswith("\\"):
            current += line[:-1]
            continue
        lines.append(current + line)
        current = ""
    return lines


def test_the_systemd_unit_starts_tov_serve_and_reloads_with_sighup():
    settings = {}
    section = None
    for line in unit_lines(DEPLOY / "systemd" / "tov.service"):
        if line.startswith("["):
            section = line.strip("[]")
        elif "=" in line:
            key, value = line.split("=", 1)
            settings[(section, key)] = value
    assert settings[("Service", "ExecReload")] == "/bin/kill -HUP $MAINPID"
    assert settings[("Service", "KillSignal")] == "SIGTERM"
    command = shlex.split(settings[("Service", "ExecStart")])
    assert command[:2] == ["/usr/local/bin/tov", "serve"]
    assert "--rules" in command and "--dm" in command
    assert int(settings[("Service", "TimeoutStopSec")]) > 10  # longer than the default grace
    assert settings[("Install", "WantedBy")] == "multi-user.target"
