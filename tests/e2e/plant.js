// What a page of a site runs to leave all that a page can leave; called with the word of the site. It answers
// with what failed.
(async word => {
    const failed = {};
    const limit = () => new Promise((_, reject) => setTimeout(() => reject(new Error('timeout')), 120000));
    const step = async (name, work) => {
        try {
            await Promise.race([work(), limit()]);
        } catch (error) {
            failed[name] = String(error);
        }
    };
    await step('localStorage', async () => {
        localStorage.setItem('qzlsky' + word, 'qzlsvl' + word + ' ' + 'x'.repeat(300));
        localStorage.setItem('qzlsbg' + word, ('qzlsbv' + word + ' ').repeat(400));
        localStorage.setItem('qzlsgn' + word, 'qzlsgo' + word);
        localStorage.removeItem('qzlsgn' + word);
    });
    await step('sessionStorage', async () => sessionStorage.setItem('qzssky' + word, 'qzssvl' + word));
    await step('cookie', async () => {
        document.cookie = `qzjckn${word}=qzjckv${word}; Max-Age=9999999; Path=/`;
    });
    await step('indexedDB', () => new Promise((done, reject) => {
        const request = indexedDB.open('qzidbn' + word, 1);
        request.onupgradeneeded = () => request.result.createObjectStore('qzidbs' + word);
        request.onerror = () => reject(request.error);
        request.onsuccess = () => {
            const change = request.result.transaction('qzidbs' + word, 'readwrite');
            const store = change.objectStore('qzidbs' + word);
            store.put({text: 'qzidbv' + word, more: 'y'.repeat(100)}, 'qzidbk' + word);
            store.put(('qzidbg' + word + ' ').repeat(5000), 'big');
            store.put(new Blob(['qzidbb' + word + ' '.repeat(9000)]), 'blob');
            change.oncomplete = () => done();
            change.onerror = () => reject(change.error);
        };
    }));
    await step('history', async () => history.pushState({s: 'qzstat' + word}, '', '/qzpush' + word));
    if (!isSecureContext) return failed;
    await step('caches', async () => {
        const cache = await caches.open('qzcapn' + word);
        await cache.add('/qzcapu' + word);
        await cache.put('/qzcapp' + word, new Response('qzcapr' + word));
    });
    await step('files', async () => {
        const folder = await navigator.storage.getDirectory();
        const file = await folder.getFileHandle('qzopfn' + word, {create: true});
        const stream = await file.createWritable();
        await stream.write('qzopfs' + word + ' data');
        await stream.close();
    });
    await step('worker', async () => {
        await navigator.serviceWorker.register('/sw.js');
        const worker = await navigator.serviceWorker.ready;
        if (worker.sync) await worker.sync.register('qzsync' + word);
        // Firefox keeps none where the system shows none.
        await worker.showNotification('qznoti' + word, {body: 'qznotb' + word}).catch(() => {});
    });
    await step('dictionary', async () => (await fetch('/dict/one')).text());
    await step('files of the cache', async () => {
        for (const number of [0, 1, 2]) await (await fetch(`/big/${number}.dat`)).blob();
    });
    return failed;
})
