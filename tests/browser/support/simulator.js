// A simulated MacBook of one test's own: `sentrel-simulator serve` on a free port, with its disk in a temporary folder.

import { spawn } from "node:child_process";
import { mkdtemp, rm } from "node:fs/promises";
import { tmpdir } from "node:os";
import path from "node:path";
import { createInterface } from "node:readline";
import { fileURLToPath } from "node:url";

export const root = fileURLToPath(new URL("../../..", import.meta.url));
const program = process.env.SENTREL_SIMULATOR ?? path.join(root, "build/release/sentrel-simulator");

export class Simulator {
    #process = null;
    #port = 0;
    #token = "0123456789abcdef0123456789abcdef";

    /// `prepare(disk)` may put files on the disk before the Mac starts; `scenario` is one of `scenarios/`, without .yaml;
    /// `language` is that of the Mac's user; a Mac whose disk `isKept` can't be replaced by a new one.
    static async start({ scenario = "cafe-theft", language = "en_US", prepare = () => {}, isKept = true } = {}) {
        const simulator = new Simulator();
        Object.assign(simulator, { language, isKept });
        simulator.disk = await mkdtemp(path.join(tmpdir(), "sentrel-page-"));
        simulator.scenario = path.join(root, "scenarios", `${scenario}.yaml`);
        await prepare(simulator.disk);
        await simulator.launch();
        return simulator;
    }

    /// The page's address, with the run's token.
    get address() {
        return `http://127.0.0.1:${this.#port}/?token=${this.#token}`;
    }

    /// Starts the program; once more after `end`, it comes back at the same address, unless its token is another.
    async launch(token = this.#token) {
        this.#token = token;
        const options = ["--scenario", this.scenario, "--token", this.#token, "--port", `${this.#port}`];
        options.push("--language", this.language, ...(this.isKept ? ["--disk", this.disk] : []));
        this.#process = spawn(program, ["serve", ...options], { stdio: ["ignore", "pipe", "inherit"] });
        const failed = new Promise((_, reject) => {
            this.#process.once("error", reject);
            this.#process.once("exit", (status) => reject(new Error(`the simulator ended with status ${status}`)));
        });
        const told = (async () => {
            for await (const line of createInterface({ input: this.#process.stdout })) {
                const found = /127\.0\.0\.1:(\d+)/.exec(line);
                if (found) {
                    return Number(found[1]);
                }
            }
            return failed; // it has ended without a word
        })();
        this.#port = await Promise.race([told, failed]);
        failed.catch(() => {}); // its end is expected from now on
    }

    /// Ends the program, as Ctrl-C does; tells its exit status.
    async end() {
        const ending = this.#process;
        if (ending.exitCode === null && ending.signalCode === null) {
            const ended = new Promise((done) => ending.once("exit", done));
            ending.kill("SIGTERM");
            await ended;
        }
        return ending.exitCode;
    }

    async close() {
        await this.end();
        await rm(this.disk, { recursive: true, force: true });
    }
}
