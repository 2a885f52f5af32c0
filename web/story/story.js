// While a sound plays, its waveform shows the place and the story the moment. A click on the waveform plays from there.
{
    const moments = [...document.querySelectorAll("#story li")];
    for (const figure of document.querySelectorAll(".sound")) {
        const audio = figure.querySelector("audio");
        const chart = figure.querySelector(".chart");
        if (!audio) {
            continue;
        }
        const start = Number(figure.dataset.start);
        const seconds = Number(figure.dataset.seconds);
        const show = () => {
            chart.style.setProperty("--place", audio.currentTime / seconds);
            const now = moments.findLast((moment) => Number(moment.dataset.at) <= start + audio.currentTime + 0.05);
            moments.forEach((moment) => moment.classList.toggle("now", moment === now && !audio.ended));
            if (!audio.paused) {
                requestAnimationFrame(show);
            }
        };
        audio.addEventListener("play", () => {
            document.querySelectorAll("audio").forEach((other) => other === audio || other.pause());
            show();
        });
        audio.addEventListener("seeked", show);
        audio.addEventListener("ended", show);
        chart.addEventListener("click", (click) => {
            const box = chart.getBoundingClientRect();
            audio.currentTime = Math.min(((click.clientX - box.left) / box.width) * seconds, audio.duration);
            audio.play();
        });
    }
}
