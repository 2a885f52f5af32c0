// Alerts of earlier days on a Mac's disk, as the product keeps them.

import { mkdir, writeFile } from "node:fs/promises";
import path from "node:path";

const referenceDate = Date.UTC(2001, 0, 1) / 1000;
const reasons = ["unplugged", "lidClosed", "motion", "lockBypassAttempt"];

export async function fillWithAlerts(disk, count) {
    const folder = path.join(disk, "Application Support/pelma.Sentrel/Alerts");
    await mkdir(folder, { recursive: true });
    for (let index = 0; index < count; ++index) {
        const id = `00000000-0000-4000-8000-${String(index).padStart(12, "0")}`;
        const alert = {
            id,
            reason: reasons[index % reasons.length],
            timestamp: Date.now() / 1000 - referenceDate - index * 3600,
            deviceName: "Maya's MacBook Pro",
            sendNotification: true,
        };
        await writeFile(path.join(folder, `${id}.json`), JSON.stringify({ alert, pendingUpload: false }));
    }
}
