"""A day of three agents in a minute, through the very commands in their files, against a model of its own."""

import json
import random
import unittest

from harness import HOME, DesktopTest, Kestro, run_as_agent, wait_for

FILES = {agent: HOME / f".{agent}" / name for agent, name in
         (("claude", "settings.json"), ("codex", "hooks.json"), ("cursor", "hooks.json"))}
STATES = {"SessionStart": None, "sessionStart": None, "UserPromptSubmit": "Working", "beforeSubmitPrompt": "Working",
          "PostToolUse": "Working", "postToolUse": "Working", "PermissionRequest": "Needs input", "Stop": "Done",
          "stop": "Done", "Interrupt": "Idle"}
URGENCY = ["Needs input", "Working", "Done"]


def commands(agent):
    """The hook of each event, as the agent finds it in its file."""
    entries = json.loads(FILES[agent].read_text())["hooks"]
    return {event: (entry["command"] if "command" in entry else entry["hooks"][0]["command"])
            for event, (entry, *_) in entries.items()}


def message(agent, session, project, event):
    """What the agent gives its hook, with much that nobody reads."""
    noise = {"transcript_path": "/x/y.jsonl", "permission_mode": "default", "tool_name": "Bash",
             "tool_input": {"session_id": "not this one", "command": "x" * 200_000, "nested": [{"hook_event_name": 1}]}}
    if agent == "cursor":
        return {"conversation_id": session, "workspace_roots": [f"/home/u/{project}"], "hook_event_name": event, **noise}
    return {"session_id": session, "cwd": f"/home/u/{project}", "hook_event_name": event, **noise}


class Test(DesktopTest):
    def setUp(self):
        super().setUp()
        (HOME / ".cursor").mkdir()
        self.kestro = self.using(Kestro({"agentsEnabled": True, "cursorEnabled": True}))
        self.tree = self.kestro.tree
        wait_for(lambda: all(path.exists() for path in FILES.values()))
        self.commands = {agent: commands(agent) for agent in FILES}
        self.sessions = []  # (id, project, state), the one last heard from first

    def tell(self, agent, session, project, event):
        done = run_as_agent(self.commands[agent][event], json.dumps(message(agent, session, project, event)))
        self.assertEqual((0, ""), (done.returncode, done.stderr))
        self.assertEqual('{"continue":true}\n' if agent == "cursor" else "", done.stdout)
        before = next((known for known in self.sessions if known[0] == session), (session, project, "Idle"))
        self.sessions = [known for known in self.sessions if known[0] != session]
        if event not in ("SessionEnd", "sessionEnd"):
            self.sessions.insert(0, (session, project, STATES[event] or before[2]))

    def shown(self):
        rows = self.tree.find_all("list item")
        return [row.name for row in sorted(rows, key=lambda row: row.frame.y)]

    def badge(self):
        return self.tree.find("button", "AI").description

    def check(self, step):
        rows = [f"{project}, {state}, now" for _, project, state in self.sessions[:4]]
        states = {state for _, _, state in self.sessions}
        badge = next((state for state in URGENCY if state in states), "")
        wait_for(lambda: self.shown() == rows and self.badge() in (badge, "" if badge == "Done" else badge), 3,
                 lambda: f"{rows} and {badge!r} after {step}:\n{self.tree}")

    def test_rows_and_badge_follow_three_agents(self):
        self.pointer.glide(*self.tree.find("button", "AI").frame.middle)
        self.tree.wait(name="No active sessions")
        day = random.Random(4)
        for number in range(50):
            agent = day.choice(list(FILES))
            session = f"{agent}-{day.randrange(2)}"
            event = day.choice(list(self.commands[agent]))
            if event in ("SessionEnd", "sessionEnd") and day.random() < 0.5:
                event = "Stop" if agent != "cursor" else "stop"
            self.tell(agent, session, f"project-{session}", event)
            self.check(f"step {number}: {agent} {session} {event}")
        for session, _, _ in list(self.sessions):
            agent = session.split("-")[0]
            self.tell(agent, session, f"project-{session}", "sessionEnd" if agent == "cursor" else "SessionEnd")
        self.check("the end of the day")
        self.tree.wait(name="No active sessions")

    def test_what_cursor_runs_of_claude_is_not_a_second_session(self):
        self.pointer.glide(*self.tree.find("button", "AI").frame.middle)
        self.tell("cursor", "c", "both", "beforeSubmitPrompt")
        twice = {**message("claude", "other", "both", "UserPromptSubmit"), "cursor_version": "1.7.2"}
        run_as_agent(self.commands["claude"]["UserPromptSubmit"], json.dumps(twice))
        self.tell("claude", "own", "mine", "UserPromptSubmit")  # which comes later, so the other has been read
        self.check("both")


if __name__ == "__main__":
    unittest.main()
