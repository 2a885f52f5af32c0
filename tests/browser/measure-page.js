// How heavy the page is, how soon it shows the Mac, and how long it holds up the browser with a thousand alerts.

import { fillWithAlerts } from "./support/alerts.js";
import { closeBrowser, newContext } from "./support/browser.js";
import { Desk } from "./support/desk.js";
import { Simulator } from "./support/simulator.js";

const alerts = 1000;
const rounds = 7;
const heaviest = 120_000; // bytes
const longestEvent = 16; // milliseconds, a frame

const median = (values) => values.sort((one, other) => one - other)[Math.floor(values.length / 2)];

/// The median of several, and the best: the rest of the machine's work is in them, too.
function tellTimes(what, times, limit) {
    tell(`${what}, median of ${rounds}`, median(times), "ms", limit);
    tell("  best", Math.min(...times), "ms");
}

function tell(what, value, unit, limit) {
    const beside = limit === undefined ? "" : `   limit ${limit} ${unit}${value > limit ? ": MISSED" : ""}`;
    console.log(`${what.padEnd(56)}${value.toFixed(unit === "ms" ? 1 : 0).padStart(8)} ${unit.padEnd(6)}${beside}`);
}

/// The longest work on an event from the server while something is done: the time of the main thread alone, whatever
/// else the machine is doing.
async function longestDuring(page, something) {
    const browser = page.context().browser();
    await browser.startTracing(page, { categories: ["devtools.timeline"] });
    await something();
    const { traceEvents } = JSON.parse((await browser.stopTracing()).toString());
    const calls = traceEvents.filter((each) => each.name === "FunctionCall" && each.args.data?.url?.endsWith("/server.js"));
    return Math.max(...calls.map((each) => each.tdur)) / 1000;
}

async function open(simulator) {
    const page = await (await newContext()).newPage();
    const loaded = [];
    page.on("response", (response) => loaded.push(response));
    await page.goto(simulator.address);
    const desk = new Desk(simulator, page, []);
    await desk.menuItem.waitFor();
    return { desk, page, loaded };
}

async function measureLoading(simulator) {
    const paints = [];
    let weight = 0;
    for (let round = 0; round < rounds; ++round) {
        const { page, loaded } = await open(simulator);
        paints.push(await page.evaluate(() => performance.getEntriesByName("first-contentful-paint")[0].startTime));
        if (round === 0) {
            const files = loaded.filter((each) => each.ok() && /(\/|\.html|\.js|\.css)$/.test(new URL(each.url()).pathname));
            weight = (await Promise.all(files.map((each) => each.body()))).reduce((sum, body) => sum + body.length, 0);
        }
        await page.context().close();
    }
    tell("page, without photos and icons", weight, "bytes", heaviest);
    tellTimes("first paint of something useful", paints);
}

async function measureList(simulator) {
    const { desk, page } = await open(simulator);
    const [opening, choosing] = [[], []];
    for (let round = 0; round < rounds; ++round) {
        let window;
        opening.push(
            await longestDuring(page, async () => {
                window = await desk.open("Alert List", "Alert List");
                await window.getByRole("option").nth(alerts - 1).waitFor({ state: "attached" });
            }),
        );
        choosing.push(
            await longestDuring(page, async () => {
                await window.getByRole("option").nth(round + 1).click();
                await window.locator("[aria-selected=true]").and(window.getByRole("option").nth(round + 1)).waitFor();
            }),
        );
        await desk.button("Close window", window).click();
        await window.waitFor({ state: "detached" });
    }
    tellTimes(`script while the list of ${alerts} alerts opens`, opening, longestEvent);
    tellTimes("script while one of them is chosen", choosing, longestEvent);
}

const simulator = await Simulator.start({
    scenario: "control-panel",
    prepare: (disk) => fillWithAlerts(disk, alerts),
});
try {
    await measureLoading(simulator);
    await measureList(simulator);
} finally {
    await closeBrowser();
    await simulator.close();
}
