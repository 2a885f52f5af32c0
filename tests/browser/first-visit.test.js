// A stranger: what she is told, the theft that she does herself, the one that plays, and a new Mac.

import assert from "node:assert/strict";
import test from "node:test";
import { sitDown } from "./support/sitting.js";

/// Notes the captions as they come: each stays for some seconds only, which a busy browser may let pass between two
/// looks. Returns a function that waits for a text in one, with its language before it.
async function noteCaptions(desk) {
    await desk.page.evaluate(() => {
        const caption = document.querySelector("#caption");
        window.captions = [];
        const note = () => window.captions.push(`${caption.lang}: ${caption.textContent}`);
        new MutationObserver(note).observe(caption, { childList: true, characterData: true, subtree: true });
    });
    return (text) => desk.page.waitForFunction((text) => window.captions.some((each) => each.includes(text)), text);
}

test("a stranger steals the Mac in three steps, by keyboard, and is not bothered again", async (t) => {
    const desk = await sitDown(t, { browser: { isFirstVisit: true } });
    const { keyboard } = desk.page;
    const guide = desk.page.getByRole("region", { name: "Guided theft" });
    const showMe = async (step) => {
        await guide.getByText(step).waitFor();
        await desk.tabTo(desk.button("Show me", guide));
        await keyboard.press("Enter");
    };
    await desk.page.getByText("An alarm for your MacBook.").waitFor();
    await guide.getByText("Step 1 of 3").waitFor();
    await showMe("open the shield");
    await keyboard.press("Enter");
    await desk.menu.locator("input:focus").waitFor();
    await keyboard.press("Space");
    await showMe("pull the charger");
    await keyboard.press("Enter");
    await showMe("has the thief's photo");
    await keyboard.press("Enter");
    await desk.button("Close photo", desk.phone).and(desk.page.locator(":focus")).waitFor();
    await keyboard.press("Escape");
    await showMe("it asks for her login");
    await keyboard.press("Enter");
    await guide.getByText("log in").waitFor();
    await desk.button("Log in", desk.screen).and(desk.page.locator(":focus")).waitFor();
    await keyboard.press("Enter");
    await guide.getByText("That was it.").waitFor();
    await desk.tabTo(desk.button("Done", guide));
    await keyboard.press("Enter");
    await guide.waitFor({ state: "hidden" });
    await desk.page.reload();
    await desk.isArmed();
    assert.equal(await guide.isVisible(), false);
});

test("the guide points at what is to be used, covers nothing of it, and can be skipped", async (t) => {
    const desk = await sitDown(t, { browser: { isFirstVisit: true } });
    const guide = desk.page.getByRole("region", { name: "Guided theft" });
    for (const [width, height] of [[1280, 800], [390, 844]]) {
        await desk.page.setViewportSize({ width, height });
        await desk.button("Show me", guide).click();
        const boxes = await Promise.all([guide, desk.page.locator(".guide-ring"), desk.menuItem].map((each) => each.boundingBox()));
        const meet = (one, other) =>
            one.x < other.x + other.width && other.x < one.x + one.width && one.y < other.y + other.height && other.y < one.y + one.height;
        assert.ok(meet(boxes[1], boxes[2]), "the ring is round the shield");
        assert.ok(!meet(boxes[0], boxes[2]), "the card does not cover it");
    }
    await desk.button("Skip", guide).click();
    await guide.waitFor({ state: "hidden" });
    await desk.button("Steal it yourself").click();
    await guide.waitFor();
});

test("a theft plays with captions, the phone tells of it, and a new Mac knows nothing of it", async (t) => {
    const desk = await sitDown(t, { isKept: false });
    await desk.button("Closed", desk.hardware).click();
    const caption = await noteCaptions(desk);
    await desk.button("Play a theft").click();
    await caption("goes for a second coffee");
    await desk.screen.getByText("The lid is closed.").waitFor({ state: "hidden" });
    await caption("pulls the charger");
    await desk.phone.getByRole("status").getByText("Unplugged on Maya's MacBook Pro").waitFor();
    await caption("snaps the lid shut");
    await desk.screen.getByText("The lid is closed.").waitFor();
    await desk.button("Stop the theft").click();
    await desk.button("Play a theft").waitFor();

    await desk.button("New Mac").click();
    await desk.isArmed(false);
    await desk.phone.getByText("No alerts").waitFor();
    await desk.screen.getByText("The lid is closed.").waitFor({ state: "hidden" });
    assert.equal(await desk.story.getByText("The charger is pulled out.").count(), 0);
    await desk.haveAnAlert();
});

test("a theft plays in the language of the Mac, of which no caption is missing", async (t) => {
    const desk = await sitDown(t, { isKept: false, language: "de_DE" });
    const caption = await noteCaptions(desk);
    await desk.button("Play a theft").click();
    await caption("de-DE: Jemand setzt sich an ihren Tisch");
    const counts = await desk.page.evaluate(async () => {
        const [{ captions }, { captionsFor }] = await Promise.all([import("/theft.js"), import("/captions.js")]);
        const all = ["de", "fr-CA", "es", "ja", "zh-Hans", "zh-CN"].map((tag) => captionsFor(tag).filter(Boolean).length);
        return [captions.length, ...all];
    });
    assert.deepEqual(counts, counts.map(() => 11));
    await desk.button("Stop the theft").click();
    await desk.button("Play a theft").waitFor();
});
