// The one source of the link-check libraries; the component under check is linked in whole.
