// The way to the simulated MacBook: one stream of what is, and requests for what is to happen.

const waitBeforeRetry = { first: 250, longest: 5000 }; // milliseconds

/// Tells every state, whole at first and then what has changed, and whether the stream is there.
export class Stream {
    #listeners = new Map();
    #wait = waitBeforeRetry.first;
    #waiting = 0;
    #state = {};

    on(key, listener) {
        this.#listeners.set(key, [...(this.#listeners.get(key) ?? []), listener]);
    }

    get state() {
        return this.#state;
    }

    /// A page that was asleep, or without a network, does not wait for its next try.
    constructor() {
        document.addEventListener("visibilitychange", () => document.hidden || this.#retry());
        addEventListener("online", () => this.#retry());
    }

    #retry() {
        if (this.#waiting) {
            this.open();
        }
    }

    open() {
        clearTimeout(this.#waiting);
        this.#waiting = 0;
        const source = new EventSource("/api/events");
        source.addEventListener("open", () => {
            this.#wait = waitBeforeRetry.first;
            this.#tell("connected", true);
        });
        source.addEventListener("state", (event) => this.#take(JSON.parse(event.data)));
        source.addEventListener("motion", (event) => this.#tell("motion", JSON.parse(event.data)));
        source.addEventListener("error", () => {
            // The browser's own attempts stop after some answers; ours do not.
            source.close();
            this.#tell("connected", false);
            whyRefused().then((why) => this.#tell("refused", why));
            this.#waiting = setTimeout(() => this.open(), this.#wait);
            this.#wait = Math.min(2 * this.#wait, waitBeforeRetry.longest);
        });
    }

    #take(change) {
        Object.assign(this.#state, change);
        for (const [key, value] of Object.entries(change)) {
            this.#tell(key, value);
        }
        this.#tell("state", this.#state);
    }

    #tell(key, value) {
        for (const listener of this.#listeners.get(key) ?? []) {
            listener(value);
        }
    }
}

/// Why the stream is not given, in the server's words; empty while there is no server, or nothing against it any more.
async function whyRefused() {
    const question = new AbortController();
    try {
        const answer = await fetch("/api/events", { signal: question.signal });
        return answer.ok ? "" : (await answer.json()).error;
    } catch {
        return "";
    } finally {
        question.abort();
    }
}

let complain = () => {};

/// Sets the function that shows the error of a request.
export function onProblem(show) {
    complain = show;
}

/// Shows the person what went wrong.
export const report = (text) => complain(text);

/// Sends a request; true when it was done. A refusal of the server is shown to the person, unless nobody minds.
export async function post(path, body, { isOptional = false } = {}) {
    try {
        const isImage = body instanceof Blob;
        const response = await fetch(`/api/${path}`, {
            method: "POST",
            headers: { "Content-Type": isImage ? "image/jpeg" : "application/json" },
            body: isImage ? body : JSON.stringify(body),
        });
        if (response.ok) {
            return true;
        }
        if (isOptional && response.status === 409) {
            return false;
        }
        const answer = await response.json().catch(() => ({}));
        complain(answer.error ?? `The simulated MacBook answered ${response.status}.`);
    } catch {
        complain("The simulated MacBook does not answer.");
    }
    return false;
}

export const act = (action) => post("action", action);

/// The latest value only, and one request at a time: for what is dragged or typed. Resolves when all of it has arrived.
export function latest(send) {
    let waiting;
    let sending = null;
    const sendAll = async () => {
        while (waiting) {
            const next = waiting.value;
            waiting = undefined;
            await send(next);
        }
        sending = null;
    };
    return (value) => {
        waiting = { value };
        sending ??= sendAll();
        return sending;
    };
}
