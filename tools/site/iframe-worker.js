// Browsers start no worker for a page from the disk. There a hidden frame does its work, so that the search runs.
if (location.protocol === "file:") {
    window.IFrameWorker = window.Worker = class extends EventTarget {
        constructor(url) {
            super();
            const frame = document.createElement("iframe");
            frame.hidden = true;
            document.body.append(frame);
            this.inner = frame.contentWindow;
            this.inner.postMessage = (data) => this.dispatchEvent(new MessageEvent("message", { data }));
            const script = frame.contentDocument.createElement("script");
            script.src = url;
            this.ready = new Promise((loaded) => script.addEventListener("load", loaded));
            frame.contentDocument.body.append(script);
        }

        postMessage(data) {
            this.ready.then(() => this.inner.dispatchEvent(new MessageEvent("message", { data })));
        }
    };
}
